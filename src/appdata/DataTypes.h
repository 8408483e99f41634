#pragma once

#include <QMetaType>

namespace Tessellum::AppData {

/*! What kind of values an entry holds; 0 is no category. */
enum class CategoryType : quint32 {
    Unknown = 0,
    Custom = 1, /*!< Known to the application alone; without a parser of its own raw bytes. */
    Text = 2,
    Binary = 3,
    Unit = 4,
    Float = 5 /*!< One double. */
};

/*! Whether the values of an entry outlive the process. */
enum class PersistenceType : quint32 { Unknown = 0, Persistent = 1, Volatile = 2 };

/*! Whether the values are in memory. */
enum class LoadStatus : quint32 {
    Unknown = 0,
    CurrentlyLoading = 1,
    CurrentlyUnloading = 2,
    Loaded = 3,
    NotLoaded = 4
};

/*! When values are read from a storage; it travels to the storage as it is. */
enum class LoadDataHint : quint32 {
    LoadAtOnce = 0, /*!< A storage attaches all its entries, an element parses its value when it is made. */
    AttachOnly = 1, /*!< What the start of a storage passes to each of its entries. */
    OnDemand = 2 /*!< The default: nothing is read before somebody asks. */
};

/*! The keys of ElementUpdateData, in the order in which an update goes through them. */
enum class DataElementUpdateType : quint32 {
    Unknown = 0,
    Active = 1,
    Timestamp = 2,
    RawData = 3,
    ParsedData = 4
};

/*! What a value given by a caller is. */
enum class ElementValueKind : quint32 { Unknown = 0, RawData = 1, ParsedValue = 2 };

/*! Which elements a query takes. */
enum class ActivationMask : quint32 { Unknown = 0, Active = 1, Inactive = 2, All = 3 };

/*! What an element can be told to do with its value. */
enum class ElementCommand : quint32 { Unknown = 0, Load = 1, Unload = 2 };

/*! What an element can be asked about its value. */
enum class ElementQueryCommand : quint32 { Unknown = 0, IsParsedDataNull = 1, IsLoaded = 2 };

} // namespace Tessellum::AppData

Q_DECLARE_METATYPE(Tessellum::AppData::CategoryType)
Q_DECLARE_METATYPE(Tessellum::AppData::PersistenceType)
Q_DECLARE_METATYPE(Tessellum::AppData::LoadStatus)
Q_DECLARE_METATYPE(Tessellum::AppData::LoadDataHint)
