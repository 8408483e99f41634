#pragma once

#include <appconfig/backends/Backend.h>

namespace Tessellum::AppConfig::Backends {

/*! A node that begins empty; values that are created beneath it go with the process. Any thread may call. */
class MemoryBackend : public Backend
{
    Q_OBJECT
public:
    using Backend::Backend;

    static QStringList TypeKeys();
    QStringList getTypeKeys() const override;
    /*! False: there is nothing to save to. */
    bool saveAttributes() override;
    /*! Empties \a out; always true. */
    bool loadAttributesCreateDataInternal(Attributes::AttributesCreateData &out,
                                          const Notification::CreatePoint &waitPoint) override;
};

} // namespace Tessellum::AppConfig::Backends
