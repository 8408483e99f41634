#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

namespace Tessellum::AppConfig::Backends::utils {

/*!
 * The two steps from a value to the text in a message. Two values are the same to the peers if their
 * serialized bytes are: NaN equals itself, and 5 does not equal "5". Any thread may call.
 */

/*! The bytes of \a value in the stream format of Qt 5.15, the members of a hash in a fixed order. A peer's
 * bytes for the same value may differ from these: compare what SerializeValue() makes of the value that they
 * hold. */
QByteArray SerializeValue(const QVariant &value);

/*! The value of \a serialized; invalid if it is cut, nested deeper than 64 levels, announces more than there
 * is, holds an unknown type or time zone, or the stream reports a fault, or if bytes are left over. Types
 * that no peer may bring (pictures, QRegion, QEasingCurve, QRegExp) read as invalid too. A user type needs
 * stream operators that bear bad bytes, and time zones that name any file. */
QVariant DeserializeValue(const QByteArray &serialized);

/*! Compressed and in lower-case hexadecimal: what stands in a message. */
QString EncodeSerialized(const QByteArray &serialized);

/*! The most serialized bytes that one value, or all values of one subtree, may have. */
inline constexpr qint64 MaximumSerialized = 64LL * 1024 * 1024;

/*! The bytes behind \a encoded; null if it is odd or damaged or announces more than \a limit. */
QByteArray DecodeSerialized(const QString &encoded, qint64 limit = MaximumSerialized);

} // namespace Tessellum::AppConfig::Backends::utils
