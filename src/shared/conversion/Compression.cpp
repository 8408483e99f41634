#include <shared/conversion/Compression.h>

#include <QtEndian>

#include <algorithm>
#include <limits>
#include <zlib.h>

namespace Shared::Conversion {

namespace {

constexpr int PrefixSize = 4; // the length of the contents

const Bytef *dataOf(const QByteArray &bytes)
{
    return reinterpret_cast<const Bytef *>(bytes.constData());
}

template <class Number>
void appendNumber(QByteArray &bytes, Number number)
{
    bytes.append(reinterpret_cast<const char *>(&number), sizeof number);
}

/*! The memory of one thread. */
class Deflater
{
public:
    Deflater()
        : ready(deflateInit(&stream, Z_DEFAULT_COMPRESSION) == Z_OK)
    { }
    ~Deflater() { deflateEnd(&stream); }
    Q_DISABLE_COPY_MOVE(Deflater)

    /*! Null if that fails. */
    QByteArray compress(const QByteArray &bytes)
    {
        const auto size = static_cast<uLong>(bytes.size());
        if (!ready || deflateReset(&stream) != Z_OK)
            return {};
        const uLong bound = PrefixSize + deflateBound(&stream, size);
        if (bound > static_cast<uLong>(std::numeric_limits<int>::max() - 64))
            return {};
        QByteArray compressed(static_cast<int>(bound), Qt::Uninitialized);
        qToBigEndian(static_cast<quint32>(size), compressed.data());
        stream.next_in = const_cast<Bytef *>(dataOf(bytes)); // read alone
        stream.avail_in = static_cast<uInt>(size);
        stream.next_out = reinterpret_cast<Bytef *>(compressed.data()) + PrefixSize;
        stream.avail_out = static_cast<uInt>(bound - PrefixSize);
        if (deflate(&stream, Z_FINISH) != Z_STREAM_END)
            return {};
        compressed.resize(PrefixSize + static_cast<int>(stream.total_out));
        return compressed;
    }

private:
    z_stream stream{};
    const bool ready;
};

} // namespace

QByteArray Compress(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return QByteArray(PrefixSize, '\0');
    thread_local Deflater deflater;
    const QByteArray compressed = deflater.compress(bytes);
    return compressed.isNull() ? qCompress(bytes) : compressed;
}

QByteArray CompressStored(const QByteArray &bytes)
{
    constexpr int largestBlock = 65535;
    constexpr int blockHead = 5;
    constexpr int frame = 10; // the prefix, a header and a check sum
    if (bytes.isEmpty())
        return QByteArray(PrefixSize, '\0');
    const int blocks = 1 + (bytes.size() - 1) / largestBlock;
    if (bytes.size() > std::numeric_limits<int>::max() - 64 - frame - blocks * blockHead)
        return {};
    QByteArray stored;
    stored.reserve(bytes.size() + blocks * blockHead + frame);
    appendNumber(stored, qToBigEndian(static_cast<quint32>(bytes.size())));
    stored.append("\x78\x01");
    for (int at = 0, size = 0; at < bytes.size(); at += size) {
        size = std::min(largestBlock, bytes.size() - at);
        const auto length = static_cast<quint16>(size);
        stored.append(at + size == bytes.size() ? '\1' : '\0'); // whether it is the last one
        appendNumber(stored, qToLittleEndian(length));
        appendNumber(stored, qToLittleEndian(static_cast<quint16>(~length)));
        stored.append(bytes.constData() + at, size);
    }
    const uLong sum = adler32(adler32(0, nullptr, 0), dataOf(bytes), static_cast<uInt>(bytes.size()));
    appendNumber(stored, qToBigEndian(static_cast<quint32>(sum)));
    return stored;
}

} // namespace Shared::Conversion
