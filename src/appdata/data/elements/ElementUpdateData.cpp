#include <appdata/data/elements/ElementUpdateData.h>

#include <algorithm>

namespace Tessellum::AppData::Data::Elements {

namespace {

constexpr int UsualFields = 4; // a new element has no more

} // namespace

void ElementUpdateData::setActive(const bool &active)
{
    insert(DataElementUpdateType::Active, active);
}

void ElementUpdateData::setTimestamp(const quint64 &timestamp)
{
    insert(DataElementUpdateType::Timestamp, QVariant::fromValue(timestamp));
}

void ElementUpdateData::setRawData(const QByteArray &raw)
{
    insert(DataElementUpdateType::RawData, raw);
}

void ElementUpdateData::setParsedData(const QVariant &value)
{
    insert(DataElementUpdateType::ParsedData, value);
}

void ElementUpdateData::setValue(const ElementValueKind &kind, const QVariant &value)
{
    if (kind == ElementValueKind::RawData)
        insert(DataElementUpdateType::RawData, value);
    else if (kind == ElementValueKind::ParsedValue)
        insert(DataElementUpdateType::ParsedData, value);
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

bool ElementUpdateData::contains(const DataElementUpdateType &type) const
{
    return find(type) != fields.cend();
}

QVariant ElementUpdateData::value(const DataElementUpdateType &type) const
{
    const auto field = find(type);
    return field != fields.cend() ? field->value : QVariant();
}

void ElementUpdateData::insert(const DataElementUpdateType &type, const QVariant &value)
{
    if (fields.isEmpty())
        fields.reserve(UsualFields);
    const auto place = std::lower_bound(fields.begin(), fields.end(), type,
                                        [](const Field &field, auto key) { return field.type < key; });
    if (place != fields.end() && place->type == type)
        place->value = value;
    else
        fields.insert(place, {type, value});
}

void ElementUpdateData::remove(const DataElementUpdateType &type)
{
    const auto field = find(type);
    if (field != fields.cend())
        fields.remove(int(field - fields.cbegin()));
}

QList<DataElementUpdateType> ElementUpdateData::getUpdateTypes() const
{
    QList<DataElementUpdateType> types;
    types.reserve(fields.size());
    for (const Field &field : fields)
        types.append(field.type);
    return types;
}

QVector<ElementUpdateData::Field>::const_iterator
ElementUpdateData::find(const DataElementUpdateType &type) const
{
    return std::find_if(fields.cbegin(), fields.cend(),
                        [&type](const Field &field) { return field.type == type; });
}

} // namespace Tessellum::AppData::Data::Elements
