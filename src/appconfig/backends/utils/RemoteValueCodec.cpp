#include <appconfig/backends/utils/RemoteValueCodec.h>
#include <shared/conversion/BoundedDecoding.h>
#include <shared/conversion/Compression.h>
#include <shared/conversion/JsonText.h>

#include <QCoreApplication>
#include <QDataStream>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QTimeZone>

#include <algorithm>
#include <memory>
#include <new>

namespace Tessellum::AppConfig::Backends::utils {

using Shared::Conversion::StreamFields;

namespace {

constexpr int MaximumDepth = 64;
/*! A value is at least its type and its null flag, a text or an array at least its length. */
constexpr int ValueSize = 5;
constexpr int LengthSize = 4;

/*! Writes as Qt does, but the members of a hash in a fixed order, so that equal values have equal bytes. */
void write(QDataStream &stream, const QVariant &value);

void writePairs(QDataStream &stream, const QList<QPair<QString, QVariant>> &pairs)
{
    stream << static_cast<quint32>(pairs.size());
    // From the end, as Qt does.
    for (auto pair = pairs.crbegin(); pair != pairs.crend(); ++pair) {
        stream << pair->first;
        write(stream, pair->second);
    }
}

template <class Container>
QList<QPair<QString, QVariant>> pairsOf(const QVariant &value)
{
    QList<QPair<QString, QVariant>> pairs;
    const auto &container = *static_cast<const Container *>(value.constData());
    // The values of one key stand together, the one that counts in front.
    for (auto it = container.cbegin(); it != container.cend(); ++it) {
        if (pairs.isEmpty() || pairs.last().first != it.key())
            pairs.append({it.key(), it.value()});
    }
    return pairs;
}

void write(QDataStream &stream, const QVariant &value)
{
    const int type = value.userType();
    if (type != QMetaType::QVariantList && type != QMetaType::QVariantMap
        && type != QMetaType::QVariantHash) {
        stream << value;
        return;
    }
    stream << static_cast<quint32>(type) << static_cast<quint8>(value.isNull());
    if (type == QMetaType::QVariantList) {
        const auto &list = *static_cast<const QVariantList *>(value.constData());
        stream << static_cast<quint32>(list.size());
        for (const auto &item : list)
            write(stream, item);
    } else if (type == QMetaType::QVariantMap) {
        writePairs(stream, pairsOf<QVariantMap>(value));
    } else {
        auto pairs = pairsOf<QVariantHash>(value);
        std::sort(pairs.begin(), pairs.end(),
                  [](const auto &left, const auto &right) { return left.first < right.first; });
        writePairs(stream, pairs);
    }
}

/*! Whether Qt may be asked to load a type whose layout is not known here. */
bool isLoadable(quint32 type)
{
    switch (type) {
    case QMetaType::QEasingCurve: // carries the address of a function in the peer
    case QMetaType::QRegExp: // is compiled at once, which a short pattern makes last for ever
    case QMetaType::QPixmap: // pictures belong to the thread of the user interface
    case QMetaType::QBitmap:
    case QMetaType::QIcon:
    case QMetaType::QImage:
    case QMetaType::QCursor:
    case QMetaType::QBrush:
    case QMetaType::QPen:
    case QMetaType::QPalette:
    case QMetaType::QTextFormat:
    case QMetaType::QColorSpace:
    case QMetaType::QRegion: // loops as often as it announces, and nests without end
        return false;
    default:
        break;
    }
    if (type < QMetaType::FirstGuiType)
        return QMetaType::isRegistered(static_cast<int>(type));
    const auto *application = QCoreApplication::instance();
    return type < QMetaType::User && QMetaType::isRegistered(static_cast<int>(type)) && application
        && application->inherits("QGuiApplication");
}

/*! For types of Qt that begin with a number of items: the bytes of each; 0 for all others. */
int itemSizeOf(quint32 type)
{
    switch (type) {
    case QMetaType::QBitArray: // counts its bits
    case QMetaType::QUrl:
    case QMetaType::QLocale:
    case QMetaType::QCborValue:
    case QMetaType::QCborArray:
    case QMetaType::QCborMap:
    case QMetaType::QRegularExpression:
        return 1;
    case QMetaType::QKeySequence:
        return 4;
    case QMetaType::QPolygon:
        return 8;
    case QMetaType::QPolygonF:
        return 16;
    default:
        return 0;
    }
}

/*! Qt opens the file of a time zone by its id, wherever that leads: no dots, and no way from the root. */
bool isZoneId(const QString &id)
{
    constexpr int longest = 64;
    const auto isPlain = [](QChar c) {
        return c.unicode() < 0x80 && (c.isLetterOrNumber() || QStringLiteral("_+-:/").contains(c));
    };
    return !id.isEmpty() && id.size() <= longest && id.at(0) != QLatin1Char('/')
        && std::all_of(id.begin(), id.end(), isPlain);
}

class ValueReader
{
public:
    explicit ValueReader(const QByteArray &serialized)
        : fields(serialized)
        , stream(serialized)
    {
        stream.setVersion(QDataStream::Qt_5_15);
    }

    QVariant read()
    {
        const QVariant value = readValue(0);
        return fields.isDone() ? value : QVariant();
    }

private:
    QVariant readValue(int depth)
    {
        const quint32 type = fields.number();
        const bool null = fields.byte();
        if (!fields.isOk() || depth > MaximumDepth)
            return failed();
        switch (type) {
        case QMetaType::UnknownType:
            return {};
        case QMetaType::Bool:
            return wrap(fields.byte() != 0, null);
        case QMetaType::Int:
            return wrap(static_cast<int>(fields.number()), null);
        case QMetaType::UInt:
            return wrap(static_cast<uint>(fields.number()), null);
        case QMetaType::LongLong:
            return wrap(static_cast<qlonglong>(fields.longNumber()), null);
        case QMetaType::ULongLong:
            return wrap(static_cast<qulonglong>(fields.longNumber()), null);
        case QMetaType::QString:
            return wrap(fields.text(), null);
        case QMetaType::QByteArray:
            return wrap(fields.array(), null);
        case QMetaType::QStringList:
            return wrap(readItems<QStringList>(LengthSize, [this] { return fields.text(); }), null);
        case QMetaType::QByteArrayList:
            return wrap(readItems<QByteArrayList>(LengthSize, [this] { return fields.array(); }), null);
        case QMetaType::QVariantList:
            return wrap(readItems<QVariantList>(ValueSize, [this, depth] { return readValue(depth + 1); }),
                        null);
        case QMetaType::QVariantMap:
            return wrap(readPairs<QVariantMap>(depth), null);
        case QMetaType::QVariantHash:
            return wrap(readPairs<QVariantHash>(depth), null);
        case QMetaType::QVariant: {
            const QVariant inner = readValue(depth + 1);
            return fields.isOk() ? QVariant(QMetaType::QVariant, &inner) : QVariant();
        }
        case QMetaType::QJsonValue:
            return wrap(readJsonValue(), null);
        case QMetaType::QJsonObject:
            return wrap(readJson().object(), null);
        case QMetaType::QJsonArray:
            return wrap(readJson().array(), null);
        case QMetaType::QJsonDocument:
            return wrap(readJson(), null);
        case QMetaType::QDateTime:
            return zoneFits() ? readDateTime(null) : failed();
        case QMetaType::User:
            return readUserType(null);
        default:
            return isLoadable(type) && lengthFits(type) ? load(static_cast<int>(type), null) : failed();
        }
    }

    QVariant failed()
    {
        fields.fail();
        return {};
    }

    template <class T>
    static QVariant wrap(const T &value, bool null)
    {
        if (!null)
            return QVariant::fromValue(value);
        QVariant result(static_cast<QVariant::Type>(qMetaTypeId<T>())); // a null one
        *static_cast<T *>(result.data()) = value;
        return result;
    }

    template <class List, class Read>
    List readItems(int itemSize, const Read &readItem)
    {
        List list;
        const int count = fields.count(itemSize);
        list.reserve(count);
        for (int item = 0; item < count && fields.isOk(); ++item)
            list.append(readItem());
        return list;
    }

    template <class Pairs>
    Pairs readPairs(int depth)
    {
        Pairs pairs;
        const int count = fields.count(LengthSize + ValueSize);
        for (int pair = 0; pair < count && fields.isOk(); ++pair) {
            const QString key = fields.text();
            pairs.insert(key, readValue(depth + 1));
        }
        return pairs;
    }

    QJsonDocument readJson()
    {
        QJsonDocument document;
        const QByteArray text = fields.array();
        if (!text.isEmpty() && !Shared::Conversion::ReadJsonText(QString::fromUtf8(text), document))
            fields.fail();
        return document;
    }

    QJsonValue readJsonValue()
    {
        const int type = fields.byte();
        switch (type) {
        case QJsonValue::Null:
        case QJsonValue::Undefined:
            return static_cast<QJsonValue::Type>(type);
        case QJsonValue::Bool:
            return fields.byte() != 0;
        case QJsonValue::Double:
            return fields.real();
        case QJsonValue::String:
            return fields.text();
        case QJsonValue::Array:
            return readJson().array();
        case QJsonValue::Object:
            return readJson().object();
        default:
            fields.fail();
            return {};
        }
    }

    QVariant readUserType(bool null)
    {
        const QByteArray name = fields.array();
        const int type = fields.isOk() ? QMetaType::type(name.constData()) : 0;
        return type >= QMetaType::User ? load(type, null) : failed();
    }

    /*! Checks the number in front without going past it. */
    bool lengthFits(quint32 type)
    {
        const int itemSize = itemSizeOf(type);
        if (itemSize == 0)
            return true;
        const int start = fields.getPosition();
        const qint64 items = fields.number();
        const bool isBits = type == QMetaType::QBitArray;
        const qint64 bytes = isBits ? (items + 7) / 8 : items * itemSize;
        const bool isNull = items == 0xffffffff && itemSize == 1 && !isBits;
        const bool fits = isNull || bytes <= fields.getLeft();
        fields.seek(start);
        return fits;
    }

    /*! Checks the ids of a time zone at the end without going past it. */
    bool zoneFits()
    {
        const int start = fields.getPosition();
        fields.longNumber(); // date
        fields.number(); // time
        bool fits = true;
        if (fields.byte() == Qt::TimeZone) {
            QString id = fields.text();
            if (id == QLatin1String("OffsetFromUtc")) // the mark of a zone of the peer's own
                id = fields.text();
            fits = isZoneId(id);
        }
        fields.seek(start);
        return fits && fields.isOk();
    }

    QVariant readDateTime(bool null)
    {
        const QVariant value = load(QMetaType::QDateTime, null);
        const QDateTime read = value.toDateTime();
        return read.timeSpec() != Qt::TimeZone || read.timeZone().isValid() ? value : failed();
    }

    /*! By the type's own operator, at the place that was reached. */
    QVariant load(int type, bool null)
    {
        const auto destroy = [type](void *instance) { QMetaType::destroy(type, instance); };
        const std::unique_ptr<void, decltype(destroy)> instance(QMetaType::create(type), destroy);
        stream.device()->seek(fields.getPosition());
        if (!instance || !QMetaType::load(stream, type, instance.get()) || stream.status() != QDataStream::Ok)
            return failed();
        const int start = fields.getPosition();
        fields.seek(stream.device()->pos());
        if (!null)
            return QVariant(type, instance.get());
        QVariant value(static_cast<QVariant::Type>(type));
        stream.device()->seek(start);
        return QMetaType::load(stream, type, value.data()) ? value : failed();
    }

    StreamFields fields;
    QDataStream stream;
};

} // namespace

QByteArray SerializeValue(const QVariant &value)
{
    QByteArray serialized;
    QDataStream stream(&serialized, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    write(stream, value);
    return serialized;
}

QVariant DeserializeValue(const QByteArray &serialized)
{
    try {
        return ValueReader(serialized).read();
    } catch (const std::bad_alloc &) {
        // The operator of a user type believed a length.
        return {};
    }
}

QString EncodeSerialized(const QByteArray &serialized)
{
    return Shared::Conversion::ToHexText(Shared::Conversion::Compress(serialized));
}

QByteArray DecodeSerialized(const QString &encoded, qint64 limit)
{
    return Shared::Conversion::UncompressBounded(Shared::Conversion::FromHexText(encoded), limit);
}

} // namespace Tessellum::AppConfig::Backends::utils
