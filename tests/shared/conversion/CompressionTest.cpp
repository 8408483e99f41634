#include <shared/conversion/Compression.h>

#include <QtTest>

using namespace Shared::Conversion;

class CompressionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theBytesAreThoseOfQt()
    {
        // One after the other with what is left of those before, around the ends of the blocks.
        for (const int size : {0, 1, 9, 1000, 300000, 2, 65534, 65535, 65536, 131070, 131071, 10}) {
            QByteArray bytes(size, Qt::Uninitialized);
            for (int i = 0; i < size; ++i)
                bytes[i] = char(qint64(i) * i / 7);
            QCOMPARE(Compress(bytes), qCompress(bytes));
            QCOMPARE(CompressStored(bytes), qCompress(bytes, 0));
        }
    }
};

QTEST_GUILESS_MAIN(CompressionTest)
#include "CompressionTest.moc"
