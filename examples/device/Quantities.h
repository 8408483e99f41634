#pragma once

#include <QByteArray>
#include <QStringList>
#include <QVector>

#include <optional>

/*! What a supply sets and measures, as whole numbers: voltage in millivolt, current in microampere, frequency
 * in millihertz. The place of a quantity in the list is its number in the messages. */
namespace Quantities {

const QStringList &Names();

/*! One value for each quantity; the payload of a reading, behind one byte that says whether the output is on.
 */
struct Reading
{
    bool isOn = false;
    QVector<qint32> values;

    QByteArray toBytes() const;
    static std::optional<Reading> Parse(const QByteArray &bytes);
};

/*! The payload of a request to set a quantity. */
struct Setting
{
    quint8 quantity = 0;
    qint32 value = 0;

    QByteArray toBytes() const;
    static std::optional<Setting> Parse(const QByteArray &bytes);
};

} // namespace Quantities
