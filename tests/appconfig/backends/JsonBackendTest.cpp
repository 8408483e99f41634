#include "RepositoryFixture.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QPoint>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

using Shared::Logging::LogMessageType;
using Values = RepositoryFixture::Values;

Q_DECLARE_METATYPE(Values)

namespace {

QByteArray Nested(int levels)
{
    return QByteArray(levels, '[') + '1' + QByteArray(levels, ']');
}

QByteArray Content(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

QJsonDocument Document(const char *json)
{
    return QJsonDocument::fromJson(json);
}

/// No file may grow beyond a few bytes while this lives: a disk that is full.
class FullDisk
{
public:
    FullDisk()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit tiny{10, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &tiny);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &before); }

private:
    rlimit before;
};

/// Rights that count also where the tests run as root.
class OrdinaryUser
{
public:
    OrdinaryUser()
        : changed(geteuid() == 0 && seteuid(Id) == 0)
    { }
    ~OrdinaryUser()
    {
        if (changed && seteuid(0) != 0)
            qFatal("cannot become root again");
    }
    static constexpr uid_t Id = 65534;

private:
    const bool changed;
};

} // namespace

class JsonBackendTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        fixture = std::make_unique<RepositoryFixture>();
        directory = std::make_unique<QTemporaryDir>();
        fileName = directory->filePath(QStringLiteral("values.json"));
    }
    void cleanup()
    {
        fixture.reset();
        directory.reset();
    }

    void loadsDocument_data();
    void loadsDocument();
    void refusesDocument_data();
    void refusesDocument();
    void refusesEveryPrefix();
    void passesWithoutText();
    void refusesOtherData();

    void comesBackAsSaved();
    void savesWhatTheTreeHolds();
    void skipsWhatJsonCannotHold();
    void emptiesTheFileWithoutValues();
    void savesNothingBeyondTheDepthOfADocument();
    void keepsTheOldFileOnAFullDisk();
    void followsLinks();
    void writesDirectlyWhereItMust();
    void reportsWhatCannotBeWritten();

private:
    bool load(const QVariant &data) { return fixture->create(QStringLiteral("json"), name, data); }
    bool save() { return fixture->backends().saveBackend(name); }
    void write(const QByteArray &text) const
    {
        QFile file(fileName);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    }

    std::unique_ptr<RepositoryFixture> fixture;
    std::unique_ptr<QTemporaryDir> directory;
    const QString name = QStringLiteral("doc");
    QString fileName;
};

void JsonBackendTest::loadsDocument_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<Values>("expected");
    QTest::newRow("levels and arrays") << QByteArray(R"({"net":{"port":8080,"hosts":["a","b"]},"title":"x"})")
                                       << Values{{"net.port", 8080.0},
                                                 {"net.<hosts>.0", QStringLiteral("a")},
                                                 {"net.<hosts>.1", QStringLiteral("b")},
                                                 {"title", QStringLiteral("x")}};
    QTest::newRow("types") << QByteArray(R"({"t":true,"i":9007199254740993,"d":0.5,"s":""})")
                           << Values{{"t", true}, {"i", 9007199254740992.0}, {"d", 0.5}, {"s", QString("")}};
    QTest::newRow("null at top level") << QByteArray("[1,null,3]") << Values{{"0", 1.0}, {"2", 3.0}};
    QTest::newRow("array in array") << QByteArray(R"({"m":[[1,2]]})")
                                    << Values{{"<m>.<0>.0", 1.0}, {"<m>.<0>.1", 2.0}};
    QTest::newRow("separator in keys")
        << QByteArray(R"({"a.b":1,"c.d":[2],"e.":3})") << Values{{"a.b", 1.0}, {"c.<d>.0", 2.0}};
    QTest::newRow("empty keys") << QByteArray(R"({"":{"a":1},"b":{"":2,"c":3}})")
                                << Values{{"a", 1.0}, {"b.c", 3.0}};
    QTest::newRow("text of other alphabets") << QByteArray("{\"gr\xc3\xb6\xc3\x9f"
                                                           "e\":\"\xf0\x9f\x98\x80\"}")
                                             << Values{{QString::fromUtf8("gr\xc3\xb6\xc3\x9f"
                                                                          "e"),
                                                        QString::fromUtf8("\xf0\x9f\x98\x80")}};
}

void JsonBackendTest::loadsDocument()
{
    QFETCH(QByteArray, json);
    QFETCH(Values, expected);
    QVERIFY(load(json));
    const Values found = fixture->values(name);
    QCOMPARE(found, expected);
    for (auto value = expected.constBegin(); value != expected.constEnd(); ++value)
        QCOMPARE(found.value(value.key()).type(), value.value().type());
    QCOMPARE(fixture->backends().getBackendNames(), QStringList(name));
}

void JsonBackendTest::refusesDocument_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("message");
    const QString parsing
        = QStringLiteral("JsonBackend::loadAttributesCreateDataInternal() json file parsing "
                         "failed with error: %1 at offset: %2 create data=%3");
    QTest::newRow("no value") << QByteArray("{}") << QString();
    QTest::newRow("nulls") << QByteArray(R"({"a":null})")
                           << QStringLiteral("JsonBackend::loadJsonValue() skipping null value");
    QTest::newRow("nameless") << QByteArray(R"({"":1})")
                              << QStringLiteral(
                                     "JsonBackend::loadJsonValue() skipping value with an empty path"
                                     " element: ''");
    QTest::newRow("key of many elements")
        << "{\"" + QByteArray(2048, 'a').replace("aa", "a.") + "a\":1}"
        << QStringLiteral("JsonBackend::loadJsonValue() skipping value with more "
                          "than 1024 path elements");
    QTest::newRow("no document") << QByteArray("1") << parsing.arg("illegal value", "1", "1");
    QTest::newRow("not UTF-8") << QByteArray("[\"\xff\"]")
                               << parsing.arg("invalid UTF8 string", "2", QString::fromUtf8("[\"\xff\"]"));
    for (const int levels : {1025, 100000}) {
        const QByteArray json = Nested(levels);
        QTest::addRow("%d levels", levels)
            << json << parsing.arg("too deeply nested document", "1025", QString::fromLatin1(json));
    }
}

void JsonBackendTest::refusesDocument()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, message);
    QVERIFY(!load(json));
    QCOMPARE(fixture->takeLog(LogMessageType::warning),
             message.isEmpty() ? QStringList() : QStringList(message));
    QVERIFY(!fixture->node(name));
    QVERIFY(fixture->backends().getBackendNames().isEmpty());
}

void JsonBackendTest::refusesEveryPrefix()
{
    const QByteArray json = R"({"a":[1.5e3,true,null,"x\u00e9\n"],"b":{"c":"d"}})";
    for (int size = 1; size < json.size(); ++size) {
        QVERIFY2(!load(json.left(size)), json.left(size).constData());
        QVERIFY(!fixture->node(name));
    }
    QVERIFY(load(json));
}

void JsonBackendTest::passesWithoutText()
{
    QVERIFY(load(fileName));
    QCOMPARE(fixture->takeLog(LogMessageType::log),
             QStringList(QStringLiteral("JsonBackend::loadAttributesCreateDataInternal() json file '%1' does "
                                        "not exist, nothing loaded")
                             .arg(fileName)));
    QVERIFY(fixture->values(name).isEmpty());
    QVERIFY(fixture->backends().hasBackend(name));

    QVERIFY(fixture->create(QStringLiteral("json"), QStringLiteral("empty"), QByteArray()));
    QCOMPARE(
        fixture->takeLog(LogMessageType::log),
        QStringList("JsonBackend::loadAttributesCreateDataInternal() json data is empty, nothing loaded"));
}

void JsonBackendTest::refusesOtherData()
{
    QVERIFY(!load(QPoint(1, 2)));
    QCOMPARE(fixture->takeLog(LogMessageType::warning),
             QStringList("JsonBackend::loadAttributesCreateDataInternal() provided backend create data not "
                         "provided as file name (QString) or json data (QByteArray), received type=QPoint"));
    QVERIFY(!load(QVariant()));
    QVERIFY(fixture->takeLog(LogMessageType::warning).value(0).endsWith(QLatin1String("received type=")));
}

void JsonBackendTest::comesBackAsSaved()
{
    const QByteArray json = R"({"a":{"b":[1,[true,"x"],{"c":"d"}]},"e":-0.25})";
    write(json);
    QVERIFY(load(fileName));
    const Values loaded = fixture->values(name);
    QCOMPARE(loaded.size(), 5);
    QVERIFY(QFile::remove(fileName));
    QVERIFY(save());
    QCOMPARE(QJsonDocument::fromJson(Content(fileName)), QJsonDocument::fromJson(json));
    QCOMPARE(Content(fileName), QJsonDocument::fromJson(json).toJson());

    const QString again = QStringLiteral("again");
    QVERIFY(fixture->create(QStringLiteral("jsonfile"), again, fileName));
    QCOMPARE(fixture->values(again), loaded);
}

void JsonBackendTest::savesWhatTheTreeHolds()
{
    write("{\"x\":1}");
    QVERIFY(load(fileName));
    // A value with children, one in brackets, one that cannot be read, a plain node, and an order of its own.
    QVERIFY(fixture->createAttribute(QStringLiteral("doc.a"), 1));
    QVERIFY(fixture->createAttribute(QStringLiteral("doc.a.b"), 2));
    QVERIFY(fixture->createAttribute(QStringLiteral("doc.a.<c>.7"), 3));
    QVERIFY(fixture->createAttribute(QStringLiteral("doc.<v>"), QStringLiteral("text")));
    QVERIFY(fixture->createAttribute(QStringLiteral("doc.hidden"), 4, 2));
    QVERIFY(fixture->createAttribute(QStringLiteral("doc.<list>.1.name"), QStringLiteral("first")));
    QVERIFY(fixture->createAttribute(QStringLiteral("doc.<list>.0"), QStringLiteral("second")));
    QVERIFY(fixture->create(QStringLiteral("memory"), QStringLiteral("doc.inner")));
    QVERIFY(fixture->createAttribute(QStringLiteral("doc.inner.y"), 5));
    QVERIFY(save());
    QCOMPARE(QJsonDocument::fromJson(Content(fileName)),
             Document(R"({"x":1,"a":1,"a.b":2,"a.c":[3],"<v>":"text","hidden":{},
                          "list":[{"name":"first"},"second"],"inner":{"y":5}})"));
}

void JsonBackendTest::skipsWhatJsonCannotHold()
{
    QVERIFY(load(fileName));
    QVERIFY(fixture->createAttribute(QStringLiteral("doc.point"), QPoint(1, 2)));
    QVERIFY(fixture->createAttribute(QStringLiteral("doc.<>.0"), 1));
    QVERIFY(fixture->createAttribute(QStringLiteral("doc.<a>.0"), qQNaN()));
    QVERIFY(fixture->createAttribute(QStringLiteral("doc.<a>.1"), 2));
    fixture->takeLog(LogMessageType::log);
    QVERIFY(save());
    QCOMPARE(
        fixture->takeLog(LogMessageType::warning),
        QStringList({"JsonBackend::saveHierarchyIntoJsonObject() skipping value of type 'QPoint' that json "
                     "cannot hold: 'point'",
                     "JsonBackend::saveHierarchyIntoJsonObject() failed to parse array attribute: <>"}));
    QCOMPARE(QJsonDocument::fromJson(Content(fileName)), Document(R"({"a":[null,2]})"));
}

void JsonBackendTest::emptiesTheFileWithoutValues()
{
    write("{\"x\":1}");
    QVERIFY(load(fileName));
    QVERIFY(fixture->node(QStringLiteral("doc.x"))->setDeleteFlag());
    QVERIFY(!save());
    QCOMPARE(Content(fileName), QByteArray());
}

void JsonBackendTest::savesNothingBeyondTheDepthOfADocument()
{
    const QString deepest = QStringList(QVector<QString>(1023, QStringLiteral("n")).toList()).join('.');
    QVERIFY(load(fileName));
    QVERIFY(fixture->createAttribute(QStringLiteral("doc.") + deepest, 1));
    QVERIFY(save());
    const QByteArray before = Content(fileName);
    QVERIFY(!QJsonDocument::fromJson(before).isNull());

    QVERIFY(fixture->createAttribute(QStringLiteral("doc.%1.n.n").arg(deepest), 1));
    QVERIFY(!save());
    QCOMPARE(Content(fileName), before);
    QCOMPARE(
        fixture->takeLog(LogMessageType::warning),
        QStringList(QStringLiteral("JsonBackend::saveAttributes() the tree beneath 'doc' has more than 1024 "
                                   "levels, nothing saved to json file '%1'")
                        .arg(fileName)));
}

void JsonBackendTest::keepsTheOldFileOnAFullDisk()
{
    const QByteArray before = R"({"x":"a text of more than a few bytes"})";
    write(before);
    QVERIFY(load(fileName));
    {
        const FullDisk full;
        QVERIFY(!save());
    }
    QCOMPARE(Content(fileName), before);
    QCOMPARE(QDir(directory->path()).entryList(QDir::Files).size(), 1);
    QVERIFY(save());
}

void JsonBackendTest::followsLinks()
{
    const QString link = directory->filePath(QStringLiteral("link.json"));
    write("{\"x\":1}");
    QVERIFY(QFile::link(fileName, link));
    QVERIFY(load(link));
    QVERIFY(fixture->createAttribute(QStringLiteral("doc.x"), 2));
    QVERIFY(save());
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(QJsonDocument::fromJson(Content(fileName)), Document(R"({"x":2})"));
}

void JsonBackendTest::writesDirectlyWhereItMust()
{
    write("{\"x\":1}");
    QVERIFY(load(fileName));
    QVERIFY(fixture->createAttribute(QStringLiteral("doc.x"), 2));
    if (geteuid() == 0)
        QCOMPARE(chown(QFile::encodeName(fileName).constData(), OrdinaryUser::Id, OrdinaryUser::Id), 0);
    QVERIFY(QFile::setPermissions(directory->path(),
                                  QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup));
    {
        const OrdinaryUser user;
        QVERIFY(save());
    }
    QVERIFY(QFile::setPermissions(directory->path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(QJsonDocument::fromJson(Content(fileName)), Document(R"({"x":2})"));
}

void JsonBackendTest::reportsWhatCannotBeWritten()
{
    const QString below = directory->filePath(QStringLiteral("none/values.json"));
    QVERIFY(load(below));
    QVERIFY(fixture->createAttribute(QStringLiteral("doc.x"), 1));
    QVERIFY(!save());
    QCOMPARE(fixture->takeLog(LogMessageType::warning),
             QStringList(QStringLiteral("JsonBackend::saveAttributes() json file '%1' cannot be opened for "
                                        "writing, nothing saved")
                             .arg(below)));

    // A device takes no replacement beside it, and this one takes no byte at all.
    const QString device = QStringLiteral("/dev/full");
    const QString other = QStringLiteral("other");
    QVERIFY(fixture->create(QStringLiteral("json_file"), other, fileName));
    QVERIFY(fixture->createAttribute(QStringLiteral("other.x"), 1));
    QVERIFY(QFile::link(device, fileName));
    QVERIFY(!fixture->backends().saveBackend(other));
    QCOMPARE(
        fixture->takeLog(LogMessageType::warning),
        QStringList(QStringLiteral("JsonBackend::saveAttributes() json file '%1' cannot be written: No space "
                                   "left on device")
                        .arg(fileName)));
    QVERIFY(QFileInfo(fileName).isSymLink() && QFileInfo::exists(device));

    QVERIFY(fixture->create(QStringLiteral("json"), QStringLiteral("bytes"), QByteArray("[1]")));
    QVERIFY(fixture->backends().saveBackend(QStringLiteral("bytes")));
}

QTEST_GUILESS_MAIN(JsonBackendTest)
#include "JsonBackendTest.moc"
