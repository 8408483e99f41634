#pragma once

#include <shared/TessellumExport.h>

#include <QString>
#include <QStringList>

namespace Tessellum::AppConfig::Interfaces {

/*! What an application sees of a backend. Any thread may call; an expired backend answers empty and false. */
class TESSELLUM_EXPORT BackendInterface
{
public:
    /*! The type key that the backend was created with. */
    virtual QString getType() const = 0;
    virtual QString getDescription() const = 0;
    /*! The name of the backend's node. */
    virtual QString getId() const = 0;
    /*! All type keys of the backend's class. */
    virtual QStringList getTypeKeys() const = 0;
    /*! Replaces the description; an empty text is refused with false. */
    virtual bool setDescription(const QString &description) = 0;
    virtual ~BackendInterface() = default;
};

} // namespace Tessellum::AppConfig::Interfaces
