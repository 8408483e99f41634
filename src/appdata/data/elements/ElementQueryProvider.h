#pragma once

#include <appdata/interfaces/DataElementQueryInterface.h>

namespace Tessellum::AppData::Data::Elements {

class Element;

/*! Reads an element, which owns it. */
class TESSELLUM_EXPORT ElementQueryProvider : public Interfaces::DataElementQueryInterface
{
public:
    explicit ElementQueryProvider(Element *queriedElement)
        : element(queriedElement)
    { }

    quint64 getTimestamp() const override;
    bool isActive() const override;
    QByteArray getRawData() const override;
    std::shared_ptr<QVariant> getParsedData() const override;
    bool performQueryCommand(const ElementQueryCommand &command) const override;

private:
    Element *const element; // loads on demand, so that a read may write
};

} // namespace Tessellum::AppData::Data::Elements
