#include <shared/communication/connections/MakeConnection.h>
#include <shared/communication/connections/UdpConnection.h>
#include <shared/communication/device_api/PayloadDecoder.h>
#include <shared/communication/protocols/Protocol.h>
#include <shared/communication/protocols/ProtocolMessageFactory.h>

#include <QtTest>

#include <limits>
#include <support/Literals.h>
#include <support/LogCapture.h>

using namespace Shared::Communication;
using namespace Shared::Communication::Protocols;
using DeviceApi::PayloadDecoder;
using DeviceApi::ProtocolDecoderState;

namespace {

struct Header : ProtocolHeaderInterface
{
    Header(quint64 payload, quint64 padded)
        : payloadSize(payload)
        , paddedSize(padded)
    { }
    quint64 getPayloadSize() const override { return payloadSize; }
    quint64 getPayloadPaddedSize() const override { return paddedSize; }

    const quint64 payloadSize;
    const quint64 paddedSize;
};

struct Decoder : PayloadDecoder
{
    using PayloadDecoder::PayloadDecoder;
    using PayloadDecoder::setState;
};

/*! Counts, and takes one request after the other. */
struct Tracking : ProtocolMessageTrackingInterface
{
    void trackRequest() override { ++requests; }
    void trackResponse() override { ++responses; }
    bool canProcessRequest() const override { return requests == responses; }

    int requests = 0;
    int responses = 0;
};

std::shared_ptr<Connections::Connection> openedConnection()
{
    const auto connection = Connections::MakeConnection<Connections::UdpConnection>(
        "127.0.0.1"_s, quint16(9), 0U, QAbstractSocket::AnyIPProtocol);
    connection->open();
    return connection;
}

} // namespace

class ProtocolTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void countsMessageNames();
    void installsWhatTheFactoryMakes();
    void tellsWhyItIsNotInstalled();
    void tracksMessages();
    void decodes_data();
    void decodes();
    void keepsBytesOfItsOwn();
    void refusesWhatIsInvalid();
};

void ProtocolTest::countsMessageNames()
{
    Protocol protocol({1, 2});
    QCOMPARE(protocol.registerProtocolMessages({"a", "b", "a"}), 2);
    QCOMPARE(protocol.registerProtocolMessages({"b", "c"}), 1);
    QCOMPARE(protocol.unregisterProtocolMessages({"a", "x", "a"}), 1);
    QCOMPARE(protocol.getProtocolMessages(), (QStringList{"b", "c"}));
    QVERIFY(protocol.getProtocolVersion() == (ProtocolVersion{1, 2}));
}

void ProtocolTest::installsWhatTheFactoryMakes()
{
    auto *const factory = ProtocolMessageFactory::getInstance();
    const auto name = [](const char *text) { return [text] { return QString(text); }; };
    for (const int id : {7, 200})
        QVERIFY(factory->ProtocolMessageNameFactory::registerProduct(quint8(id), name("wanted")));
    QVERIFY(!factory->ProtocolMessageNameFactory::registerProduct(7, name("late")));
    QVERIFY(factory->ProtocolMessageNameFactory::registerProduct(8, name("other")));
    const auto request = [] { return std::make_shared<Header>(1, 1); };
    QVERIFY(factory->ProtocolHeaderFactory::registerProduct({7, ProtocolDirection::Request}, request));
    QVERIFY(factory->ProtocolHeaderFactory::registerProduct({7, ProtocolDirection::Response},
                                                            [] { return std::make_shared<Header>(2, 4); }));
    for (const int id : {7, 8}) {
        QVERIFY(factory->ProtocolMessageObjectFactory::registerProduct(
            quint8(id), [](const auto &requestHeader, const auto &responseHeader, const auto &connection) {
                return std::make_shared<ProtocolMessageInterface>("m"_s, requestHeader, responseHeader,
                                                                  connection);
            }));
    }

    const TestSupport::LogCapture log;
    const auto connection = openedConnection();
    Protocol protocol({1, 0});
    protocol.registerProtocolMessages({"wanted"});
    QVERIFY(protocol.installProtocol({}, connection)); // which leaves it free
    QVERIFY(protocol.installProtocol("first"_s, connection));
    QVERIFY(!protocol.installProtocol("second"_s, connection));
    QCOMPARE(protocol.getProtocolContext(), "first"_s);
    QCOMPARE(protocol.getInstalledMessageIds(), QList<unsigned char>{7});
    QVERIFY(!protocol.getInstalledMessageById(8));
    const auto message = protocol.getInstalledMessageById(7);
    QCOMPARE(message->getConnection(), connection);
    QCOMPARE(message->getRequestHeader()->getPayloadSize(), quint64(1));
    QCOMPARE(message->getResponseHeader()->getPayloadPaddedSize(), quint64(4));
    const QString missing
        = "CRITICAL Protocol::installProtocol() failed to retrieve protocol message for id=200"_s;
    QCOMPARE(log.lines(),
             (QStringList{missing, missing,
                          "CRITICAL Protocol::installProtocol() protocol installation failed for "
                          "context=second already installed for context=first"}));

    for (const int id : {7, 8, 200}) {
        factory->ProtocolMessageNameFactory::unregisterProduct(quint8(id));
        factory->ProtocolMessageObjectFactory::unregisterProduct(quint8(id));
    }
    factory->ProtocolHeaderFactory::unregisterProduct({7, ProtocolDirection::Request});
    factory->ProtocolHeaderFactory::unregisterProduct({7, ProtocolDirection::Response});
}

void ProtocolTest::tellsWhyItIsNotInstalled()
{
    const TestSupport::LogCapture log;
    Protocol protocol({1, 0});
    const auto unopened = Connections::MakeConnection<Connections::UdpConnection>(
        "127.0.0.1"_s, quint16(9), 0U, QAbstractSocket::AnyIPProtocol);
    QVERIFY(!protocol.installProtocol("c"_s, nullptr) && !protocol.installProtocol("c"_s, unopened));
    QVERIFY(protocol.getProtocolContext().isEmpty());
    const QString line
        = "CRITICAL Protocol::installProtocol() failed to install protocol for invalid connection"_s;
    QCOMPARE(log.lines(), (QStringList{line, line}));
}

void ProtocolTest::tracksMessages()
{
    const auto message = std::make_shared<ProtocolMessageInterface>("id"_s, nullptr, nullptr, nullptr);
    QVERIFY(QMetaType::type("Shared::Communication::Protocols::ProtocolMessageInterface::ResponseStatus"));
    QVERIFY(message->canProcessRequest() && !message->trackRequest() && !message->trackResponse());
    const auto tracking = std::make_shared<Tracking>();
    message->setTracking(tracking);
    QVERIFY(message->trackRequest() && !message->canProcessRequest());
    QVERIFY(message->trackResponse() && message->canProcessRequest());
    QVERIFY(tracking->requests == 1 && tracking->responses == 1);
    QVERIFY(message->setRequestHeader(std::make_shared<Header>(3, 3)) && !message->setRequestHeader(nullptr));
    QCOMPARE(message->getRequestHeader()->getPayloadSize(), quint64(3));
}

void ProtocolTest::decodes_data()
{
    constexpr quint64 huge = std::numeric_limits<quint64>::max();
    QTest::addColumn<quint64>("payload");
    QTest::addColumn<quint64>("padded");
    QTest::addColumn<QStringList>("blocks");
    QTest::addColumn<QString>("states"); // one digit for each block
    QTest::addColumn<QString>("decoded");
    QTest::addColumn<QString>("undecoded");
    QTest::addColumn<QStringList>("lines");
    const auto row
        = [](const char *name, quint64 payload, quint64 padded, const QStringList &blocks, const char *states,
             const char *decoded, const char *undecoded, const QStringList &lines = {}) {
              QTest::newRow(name) << payload << padded << blocks << QString(states) << QString(decoded)
                                  << QString(undecoded) << lines;
          };
    const QString more
        = "CRITICAL PayloadDecoder::getRemainingBytes() parsed more bytes=%1 than expected=%2"_s;
    row("in parts", 9, 9, {"abc", "def", "ghi"}, "112", "abcdefghi", "");
    row("byte by byte", 3, 3, {"a", "b", "c", "d"}, "1122", "abc", "d");
    row("at once", 9, 9, {"abcdefghijkl"}, "2", "abcdefghi", "jkl");
    row("too much in the second", 4, 4, {"ab", "cdef", "g"}, "122", "abcd", "efg");
    row("nothing", 4, 4, {"", "", "abcd"}, "112", "abcd", "");
    row("no payload", 0, 0, {""}, "2", "", "");
    row("no payload, too much", 0, 0, {"ab", "c"}, "22", "", "abc");
    row("padding in parts", 3, 4, {"ab", "c", "-"}, "112", "abc-", "");
    row("padding at once", 5, 8, {"abcde---"}, "2", "abcde---", "");
    row("padding, too much", 5, 8, {"abcde---xy"}, "2", "abcde---", "", {more.arg(10).arg(8)});
    row("padding, more too much", 5, 8, {"abcd", "e---vwxyz"}, "12", "abcde---", "yz", {more.arg(11).arg(8)});
    row("padded below payload", 9, 4, {"abcdefghij", "k"}, "22", "abcd", "efghijk");
    row("padded to nothing", 9, 0, {"abc"}, "2", "", "abc");
    row("2^31", 1ULL << 31, 1ULL << 31, {"abc", "def"}, "11", "abcdef", "");
    row("all bits", huge, huge, {"abc", "def"}, "11", "abcdef", "");
    row("all bits of padding", 1, huge, {"abc", "def"}, "11", "abcdef", "");
}

void ProtocolTest::decodes()
{
    QFETCH(const quint64, payload);
    QFETCH(const quint64, padded);
    QFETCH(const QStringList, blocks);
    QFETCH(const QString, states);
    const TestSupport::LogCapture log;
    PayloadDecoder decoder(std::make_shared<Header>(payload, padded));
    QCOMPARE(decoder.getState(), ProtocolDecoderState::Empty);
    QString seen;
    for (const QString &block : blocks) {
        const bool wasComplete = decoder.getState() == ProtocolDecoderState::Complete;
        QByteArray data = block.toUtf8();
        seen += QString::number(static_cast<int>(decoder.appendPayload(data)));
        QCOMPARE(data, wasComplete ? block.toUtf8() : QByteArray());
    }
    QCOMPARE(seen, states);
    QTEST(QString(decoder.getDecodedPayload()), "decoded");
    QTEST(QString(decoder.getUndecodedPayload()), "undecoded");
    QTEST(log.lines(), "lines");
    QCOMPARE(decoder.getPayloadSize(), payload);
    QCOMPARE(decoder.getPayloadPaddedSize(), padded);
}

void ProtocolTest::keepsBytesOfItsOwn()
{
    QByteArray buffer = "abc";
    PayloadDecoder decoder(std::make_shared<Header>(3, 3));
    PayloadDecoder withoutPayload(std::make_shared<Header>(0, 0));
    for (PayloadDecoder *const each : {&decoder, &withoutPayload}) {
        QByteArray view = QByteArray::fromRawData(buffer.constData(), buffer.size());
        QCOMPARE(each->appendPayload(view), ProtocolDecoderState::Complete);
    }
    buffer.fill('x'); // in place, as a buffer that is read into again
    QCOMPARE(decoder.getDecodedPayload(), QByteArray("abc"));
    QCOMPARE(withoutPayload.getUndecodedPayload(), QByteArray("abc"));
}

void ProtocolTest::refusesWhatIsInvalid()
{
    const TestSupport::LogCapture log;
    Decoder decoder(std::make_shared<Header>(2, 2));
    QByteArray data = "ab";
    decoder.setState(ProtocolDecoderState(9));
    QCOMPARE(decoder.appendPayload(data), ProtocolDecoderState::Invalid);
    QCOMPARE(decoder.appendPayload(data), ProtocolDecoderState::Invalid);
    QCOMPARE(data, QByteArray("ab"));
    QVERIFY(decoder.getDecodedPayload().isEmpty() && decoder.getUndecodedPayload().isEmpty());
    QCOMPARE(log.lines(),
             QStringList("CRITICAL PayloadDecoder::appendPayload() invalid parser state=9 detected, abort "
                         "appending new data"));
    PayloadDecoder headless(nullptr);
    QCOMPARE(headless.appendPayload(data), ProtocolDecoderState::Complete);
    QCOMPARE(PayloadDecoder(headless).getUndecodedPayload(), QByteArray("ab"));
    QByteArray few = "abc";
    QCOMPARE(PayloadDecoder::dropPaddingBytes(few, 2), qint64(2));
    QCOMPARE(PayloadDecoder::dropPaddingBytes(few, -1), qint64(0));
    QCOMPARE(PayloadDecoder::dropPaddingBytes(few, 1LL << 40), qint64(1));
}

QTEST_GUILESS_MAIN(ProtocolTest)
#include "ProtocolTest.moc"
