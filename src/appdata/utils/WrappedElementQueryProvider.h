#pragma once

#include <appdata/interfaces/DataElementQueryInterface.h>
#include <appdata/utils/WrappedFront.h>

namespace Tessellum::AppData::utils {

/*! An application's handle for reading an element. */
class WrappedElementQueryProvider : public Interfaces::DataElementQueryInterface,
                                    private WrappedFront<Interfaces::DataElementQueryInterface>
{
public:
    using WrappedFront::WrappedFront;

    quint64 getTimestamp() const override;
    bool isActive() const override;
    QByteArray getRawData() const override;
    std::shared_ptr<QVariant> getParsedData() const override;
    bool performQueryCommand(const ElementQueryCommand &command) const override;
};

} // namespace Tessellum::AppData::utils
