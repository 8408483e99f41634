#pragma once

#include <QString>
#include <QtGlobal>

#include <cstdint>
#include <cstdlib>

namespace Fuzz {

/*! Ends the run as a fault where \a holds is false: the input is then kept. */
inline void Require(bool holds)
{
    if (!holds)
        std::abort();
}

/*! The bytes of one run as texts, one a line; damaged UTF-8 gives replacement characters. */
class Lines
{
public:
    Lines(const std::uint8_t *data, std::size_t size)
        : rest(QString::fromUtf8(reinterpret_cast<const char *>(data), int(size)))
    { }

    /*! The next line; empty at the end. */
    QString next()
    {
        const int end = rest.indexOf(QLatin1Char('\n'));
        const QString line = rest.left(end);
        rest = end < 0 ? QString() : rest.mid(end + 1);
        return line;
    }

    /*! All that is left. */
    QString remaining() const { return rest; }

private:
    QString rest;
};

} // namespace Fuzz
