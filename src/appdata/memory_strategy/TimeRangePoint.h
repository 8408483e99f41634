#pragma once

#include <shared/TessellumExport.h>

#include <QJsonObject>
#include <QString>

namespace Tessellum::AppData::MemoryStrategies {

/*! One end of a time range, fixed or relative to the ends of an entry or to the other end of the range. A
 * value class. */
class TESSELLUM_EXPORT TimeRangePoint
{
public:
    /*! What the value is. */
    enum class Type : quint32 {
        None = 0, /*!< The point is not set. */
        Absolute = 1, /*!< "absolute": a time stamp. */
        RelativeToStart = 2, /*!< "relative_to_start": an offset after the earliest element. */
        RelativeFromEnd = 3, /*!< "relative_from_end": an offset before the latest element. */
        RelativeToFrom = 4, /*!< "relative_to_from": an offset after the point "from", for "to" alone. */
        RelativeFromTo = 5 /*!< "relative_from_to": an offset before the point "to", for "from" alone. */
    };

    /*! \a id is "from" or "to". */
    explicit TimeRangePoint(const QString &pointId)
        : id(pointId)
    { }

    /*!
     * Takes {"value": NUMBER, "type": TEXT}; without "type" the value is absolute, an empty object unsets the
     * point. False, with nothing changed, for anything else, a negative value or a type that is not for this
     * point. Values that no time stamp can have become the largest one.
     */
    bool parse(const QJsonObject &object);

    QString getId() const { return id; }
    quint64 getValue() const { return value; }
    Type getType() const { return type; }

private:
    QString id;
    quint64 value = 0;
    Type type = Type::None;
};

} // namespace Tessellum::AppData::MemoryStrategies
