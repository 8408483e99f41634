#pragma once

#include <QByteArray>
#include <QString>

namespace Shared::Conversion {

/*!
 * Decoding of what a foreign peer sent: nothing is allocated on the word of the sender alone. Any thread may
 * call.
 */

/*! \a bytes in lower-case hexadecimal. */
QString ToHexText(const QByteArray &bytes);

/*! The bytes behind \a hex, in upper or lower case; null if it is odd or holds anything else. */
QByteArray FromHexText(const QString &hex);

/*! What qCompress() made of some bytes, again as those; null if it is damaged, announces more than \a limit
 * bytes or holds more than it announces. qUncompress() goes on allocating in the last case. */
QByteArray UncompressBounded(const QByteArray &compressed, qint64 limit);

/*!
 * Reads the fields of a stream of QDataStream one by one. Once a field is not there in full every further
 * one reads as its default. A value class on bytes that must outlive it.
 */
class StreamFields
{
public:
    explicit StreamFields(const QByteArray &stream)
        : begin(reinterpret_cast<const uchar *>(stream.constData()))
        , size(stream.size())
    { }

    bool isOk() const { return ok; }
    /*! Whether every field was there and nothing is left. */
    bool isDone() const { return ok && position == size; }
    int getPosition() const { return position; }
    int getLeft() const { return size - position; }
    /*! Goes on at \a newPosition; outside the stream it fails. */
    void seek(qint64 newPosition);
    void fail() { ok = false; }

    quint8 byte();
    quint32 number();
    quint64 longNumber();
    double real();
    /*! Null for the length of a null text or array. */
    QString text();
    QByteArray array();
    /*! A number of items of at least \a itemSize bytes each; fails if so many cannot be there. */
    int count(int itemSize);

private:
    const uchar *take(qint64 bytes);

    const uchar *begin;
    int size;
    int position = 0;
    bool ok = true;
};

} // namespace Shared::Conversion
