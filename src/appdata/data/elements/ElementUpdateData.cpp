#include <appdata/data/elements/ElementUpdateData.h>

namespace Tessellum::AppData::Data::Elements {

void ElementUpdateData::setActive(const bool &active)
{
    values.insert(DataElementUpdateType::Active, active);
}

void ElementUpdateData::setTimestamp(const quint64 &timestamp)
{
    values.insert(DataElementUpdateType::Timestamp, QVariant::fromValue(timestamp));
}

void ElementUpdateData::setRawData(const QByteArray &raw)
{
    values.insert(DataElementUpdateType::RawData, raw);
}

void ElementUpdateData::setParsedData(const QVariant &value)
{
    values.insert(DataElementUpdateType::ParsedData, value);
}

void ElementUpdateData::setValue(const ElementValueKind &kind, const QVariant &value)
{
    if (kind == ElementValueKind::RawData)
        values.insert(DataElementUpdateType::RawData, value);
    else if (kind == ElementValueKind::ParsedValue)
        values.insert(DataElementUpdateType::ParsedData, value);
}

bool ElementUpdateData::getActive(bool &active) const
{
    if (!contains(DataElementUpdateType::Active))
        return false;
    active = value(DataElementUpdateType::Active).toBool();
    return true;
}

bool ElementUpdateData::getTimestamp(quint64 &timestamp) const
{
    if (!contains(DataElementUpdateType::Timestamp))
        return false;
    timestamp = value(DataElementUpdateType::Timestamp).toULongLong();
    return true;
}

bool ElementUpdateData::getRawData(QByteArray &raw) const
{
    if (!contains(DataElementUpdateType::RawData))
        return false;
    raw = value(DataElementUpdateType::RawData).toByteArray();
    return true;
}

bool ElementUpdateData::getParsedData(QVariant &parsed) const
{
    if (!contains(DataElementUpdateType::ParsedData))
        return false;
    parsed = value(DataElementUpdateType::ParsedData);
    return true;
}

} // namespace Tessellum::AppData::Data::Elements
