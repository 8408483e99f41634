#pragma once

#include <appdata/interfaces/DataEntryInterface.h>

#include <QTextStream>
#include <QVector>

/*! The values of one entry or pair, oldest first, and what one line says of them. */
struct Series
{
    struct Point
    {
        quint64 timestamp = 0; ///< milliseconds since 1970
        double value = 0;

        friend bool operator==(const Point &left, const Point &right)
        {
            return left.timestamp == right.timestamp && left.value == right.value;
        }
    };

    QString name;
    QVector<Point> points;

    /*! Reads the elements from \a first (milliseconds since 1970) on, in the order of their time stamps; of a
     * pair, those of all its entries. */
    static Series Read(const Tessellum::AppData::Interfaces::DataEntryInterface &entry, quint64 first = 0);
    /*! "name  count  span  minimum  mean  maximum  sparkline" */
    void print(QTextStream &out) const;

    friend bool operator==(const Series &left, const Series &right)
    {
        return left.name == right.name && left.points == right.points;
    }
};

/*! The values as a row of at most \a width blocks of eight heights. */
QString Sparkline(const QVector<Series::Point> &points, int width);
