#pragma once

#include <QString>

/*! The keys under which the properties of a new entry are given. */
namespace Tessellum::AppData::Data::Entries::EntryProperties {

/*! Of the classification, a text. */
inline const QString &Classification()
{
    static const QString key = QStringLiteral("classification");
    return key;
}
/*! Of the name, a text. */
inline const QString &Name()
{
    static const QString key = QStringLiteral("name");
    return key;
}
/*! Of the category, the number of an AppData::CategoryType. */
inline const QString &CategoryType()
{
    static const QString key = QStringLiteral("category_type");
    return key;
}
/*! Of the detail of the category, a text. */
inline const QString &CategoryDetail()
{
    static const QString key = QStringLiteral("category_detail");
    return key;
}
/*! Of the persistence, the number of an AppData::PersistenceType. */
inline const QString &Persistence()
{
    static const QString key = QStringLiteral("persistence");
    return key;
}
/*! The most elements; without it SingleElement() is looked at. */
inline const QString &Capacity()
{
    static const QString key = QStringLiteral("capacity");
    return key;
}
/*! True: a capacity of 1. */
inline const QString &SingleElement()
{
    static const QString key = QStringLiteral("single_element");
    return key;
}
/*! The uuid of an entry that lends what is not given. */
inline const QString &SourceEntry()
{
    static const QString key = QStringLiteral("entry_src");
    return key;
}
/*! The uuid of the new entry. */
inline const QString &DestinationEntry()
{
    static const QString key = QStringLiteral("entry_dest");
    return key;
}
/*! The uuids of the source's elements to copy; an empty list copies all. */
inline const QString &ElementsList()
{
    static const QString key = QStringLiteral("elements_list");
    return key;
}

} // namespace Tessellum::AppData::Data::Entries::EntryProperties
