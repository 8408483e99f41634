#pragma once

#include <appdata/data/elements/ElementInfo.h>
#include <appdata/DataTypes.h>
#include <shared/TessellumExport.h>

#include <QList>
#include <QMetaType>
#include <QVariant>
#include <QVector>

#include <memory>

namespace Tessellum::AppData::Data::Elements {

/*! The values of an element that change, or with which it is made. A value class. */
class TESSELLUM_EXPORT ElementUpdateData
{
public:
    ElementUpdateData() = default;
    explicit ElementUpdateData(const std::shared_ptr<ElementInfo> &elementInfo)
        : info(elementInfo)
    { }

    /*! May be null. */
    std::shared_ptr<ElementInfo> getInfo() const { return info; }
    void setInfo(const std::shared_ptr<ElementInfo> &newInfo) { info = newInfo; }

    void setActive(const bool &active);
    void setTimestamp(const quint64 &timestamp);
    void setRawData(const QByteArray &raw);
    void setParsedData(const QVariant &value);
    /*! Under the key of \a kind; another kind stores nothing. */
    void setValue(const ElementValueKind &kind, const QVariant &value);

    /*! Whether the key is there; a value that does not convert reads as false, 0 or an empty array. */
    bool getActive(bool &active) const;
    bool getTimestamp(quint64 &timestamp) const;
    bool getRawData(QByteArray &raw) const;
    bool getParsedData(QVariant &parsed) const;

    bool contains(const DataElementUpdateType &type) const;
    QVariant value(const DataElementUpdateType &type) const;
    /*! Any key, unknown ones too, with what it is to become. */
    void insert(const DataElementUpdateType &type, const QVariant &value);
    void remove(const DataElementUpdateType &type);
    bool isEmpty() const { return fields.isEmpty(); }
    /*! The keys in ascending order. */
    QList<DataElementUpdateType> getUpdateTypes() const;

private:
    struct Field
    {
        DataElementUpdateType type;
        QVariant value;
    };

    QVector<Field>::const_iterator find(const DataElementUpdateType &type) const;

    std::shared_ptr<ElementInfo> info;
    QVector<Field> fields; // in ascending order of the keys; a table would cost an allocation for each
};

using ElementUpdateDataList = QList<ElementUpdateData>;

} // namespace Tessellum::AppData::Data::Elements

Q_DECLARE_METATYPE(Tessellum::AppData::Data::Elements::ElementUpdateData)
Q_DECLARE_METATYPE(Tessellum::AppData::Data::Elements::ElementUpdateDataList)
