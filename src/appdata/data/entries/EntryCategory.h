#pragma once

#include <appdata/interfaces/DataEntryCategoryInterface.h>

#include <QHash>
#include <QMetaType>

namespace Tessellum::AppData::Data::Entries {

/*! Type and detail; the key of parsers and element creators. */
class TESSELLUM_EXPORT EntryCategory : public Interfaces::DataEntryCategoryInterface
{
public:
    EntryCategory() = default;
    /*! The detail is stored in lower case. */
    EntryCategory(const CategoryType &categoryType, const QString &categoryDetail)
        : type(categoryType)
        , detail(categoryDetail.toLower())
    { }
    explicit EntryCategory(const Interfaces::DataEntryCategoryInterface &other)
        : EntryCategory(other.getType(), other.getDetail())
    { }

    CategoryType getType() const override { return type; }
    QString getDetail() const override { return detail; }

    friend bool operator==(const EntryCategory &left, const EntryCategory &right)
    {
        return left.type == right.type && left.detail == right.detail;
    }
    friend bool operator!=(const EntryCategory &left, const EntryCategory &right) { return !(left == right); }
    friend uint qHash(const EntryCategory &category, uint seed = 0)
    {
        return ::qHash(category.detail, seed) ^ static_cast<uint>(category.type);
    }

private:
    CategoryType type = CategoryType::Unknown;
    QString detail;
};

} // namespace Tessellum::AppData::Data::Entries

Q_DECLARE_METATYPE(Tessellum::AppData::Data::Entries::EntryCategory)
