#include <shared/conversion/BoundedDecoding.h>

#include <QtEndian>

#include <cstring>
#include <limits>
#include <zlib.h>

namespace Shared::Conversion {

namespace {

constexpr quint32 NullLength = 0xffffffff;

int digitOf(ushort character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    return -1;
}

} // namespace

QString ToHexText(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toHex());
}

QByteArray FromHexText(const QString &hex)
{
    if (hex.size() % 2 != 0)
        return {};
    QByteArray bytes(hex.size() / 2, Qt::Uninitialized);
    const ushort *in = hex.utf16();
    for (char &byte : bytes) {
        const int high = digitOf(*in++);
        const int low = digitOf(*in++);
        if (high < 0 || low < 0)
            return {};
        byte = static_cast<char>(high << 4 | low);
    }
    return bytes;
}

QByteArray UncompressBounded(const QByteArray &compressed, qint64 limit)
{
    constexpr int prefix = 4;
    if (compressed.size() < prefix)
        return {};
    const auto announced = qFromBigEndian<quint32>(compressed.constData());
    if (compressed.size() == prefix)
        return announced == 0 ? QByteArray("") : QByteArray();
    if (announced > limit || announced > static_cast<quint32>(std::numeric_limits<int>::max() - 64))
        return {};
    QByteArray bytes(static_cast<int>(announced), Qt::Uninitialized);
    uLongf length = announced;
    const int result = uncompress(reinterpret_cast<Bytef *>(bytes.data()), &length,
                                  reinterpret_cast<const Bytef *>(compressed.constData()) + prefix,
                                  static_cast<uLong>(compressed.size() - prefix));
    if (result != Z_OK)
        return {};
    bytes.resize(static_cast<int>(length));
    if (length < announced)
        bytes.squeeze(); // or a few bytes would keep what their sender announced
    return bytes;
}

void StreamFields::seek(qint64 newPosition)
{
    if (newPosition < 0 || newPosition > size)
        fail();
    else
        position = static_cast<int>(newPosition);
}

const uchar *StreamFields::take(qint64 bytes)
{
    if (!ok || bytes > getLeft()) {
        fail();
        return nullptr;
    }
    const uchar *from = begin + position;
    position += static_cast<int>(bytes);
    return from;
}

quint8 StreamFields::byte()
{
    const uchar *from = take(1);
    return from ? *from : 0;
}

quint32 StreamFields::number()
{
    const uchar *from = take(sizeof(quint32));
    return from ? qFromBigEndian<quint32>(from) : 0;
}

quint64 StreamFields::longNumber()
{
    const uchar *from = take(sizeof(quint64));
    return from ? qFromBigEndian<quint64>(from) : 0;
}

double StreamFields::real()
{
    const quint64 bits = longNumber();
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

QString StreamFields::text()
{
    const quint32 length = number();
    if (!ok || length == NullLength)
        return {};
    const uchar *from = length % sizeof(QChar) == 0 ? take(length) : nullptr;
    if (!from) {
        fail();
        return {};
    }
    QString text(static_cast<int>(length / sizeof(QChar)), Qt::Uninitialized);
    qFromBigEndian<ushort>(from, text.size(), text.data());
    return text;
}

QByteArray StreamFields::array()
{
    const quint32 length = number();
    if (!ok || length == NullLength)
        return {};
    const uchar *from = take(length);
    return from ? QByteArray(reinterpret_cast<const char *>(from), static_cast<int>(length)) : QByteArray();
}

int StreamFields::count(int itemSize)
{
    const quint32 items = number();
    if (!ok || static_cast<qint64>(items) * itemSize > getLeft()) {
        fail();
        return 0;
    }
    return static_cast<int>(items);
}

} // namespace Shared::Conversion
