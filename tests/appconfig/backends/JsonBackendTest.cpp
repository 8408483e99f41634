#include "RepositoryFixture.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QPoint>
#include <QtTest>

#include <support/ClosedFolder.h>
#include <support/Files.h>
#include <support/FullDisk.h>
#include <support/Literals.h>

using Shared::Logging::LogMessageType;
using Values = RepositoryFixture::Values;

namespace {

QByteArray Nested(int levels)
{
    return QByteArray(levels, '[') + '1' + QByteArray(levels, ']');
}

QJsonDocument Document(const char *json)
{
    return QJsonDocument::fromJson(json);
}

} // namespace

class JsonBackendTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        fixture = std::make_unique<RepositoryFixture>();
        directory = std::make_unique<TestSupport::Files>();
        fileName = directory->filePath("values.json"_s);
    }
    void cleanup()
    {
        fixture.reset();
        directory.reset();
    }

    void loadsDocument()
    {
        const QPair<const char *, Values> documents[] = {
            {R"({"net":{"port":8080,"hosts":["a","b"]},"title":"x"})",
             {{"net.port", 8080.0}, {"net.<hosts>.0", "a"}, {"net.<hosts>.1", "b"}, {"title", "x"}}},
            {R"({"t":true,"i":9007199254740993,"d":0.5,"s":""})",
             {{"t", true}, {"i", 9007199254740992.0}, {"d", 0.5}, {"s", ""}}},
            {"[1,null,3]", {{"0", 1.0}, {"2", 3.0}}},
            {R"({"m":[[1,2]]})", {{"<m>.<0>.0", 1.0}, {"<m>.<0>.1", 2.0}}},
            {R"({"a.b":1,"c.d":[2],"e.":3})", {{"a.b", 1.0}, {"c.<d>.0", 2.0}}},
            {R"({"":{"a":1},"b":{"":2,"c":3}})", {{"a", 1.0}, {"b.c", 3.0}}},
            {R"({"größe":"😀"})", {{"größe", "😀"}}},
        };
        for (const auto &[json, expected] : documents) {
            QVERIFY(load(QByteArray(json)));
            const Values found = fixture->values(name);
            QCOMPARE(found, expected);
            for (auto value = expected.constBegin(); value != expected.constEnd(); ++value)
                QCOMPARE(found.value(value.key()).type(), value.value().type());
            cleanup();
            init();
        }
    }

    void refusesDocument()
    {
        const QString skipping = "JsonBackend::loadJsonValue() skipping ";
        const auto parsing = [](const QByteArray &json, const char *error, int offset) {
            return QString("JsonBackend::loadAttributesCreateDataInternal() json file parsing failed with "
                           "error: %1 at offset: %2 create data=%3")
                .arg(error)
                .arg(offset)
                .arg(QString::fromUtf8(json));
        };
        const QByteArray nested = Nested(1025);
        const QByteArray deep = Nested(100000);
        const QPair<QByteArray, QString> documents[]
            = {{"{}", {}},
               {R"({"a":null})", skipping + "null value"},
               {R"({"":1})", skipping + "value with an empty path element: ''"},
               {"{\"" + QByteArray(2048, 'a').replace("aa", "a.") + "a\":1}",
                skipping + "value with more than 1024 path elements"},
               {"1", parsing("1", "illegal value", 1)},
               {"[\"\xff\"]", parsing("[\"\xff\"]", "invalid UTF8 string", 2)},
               {nested, parsing(nested, "too deeply nested document", 1025)},
               {deep, parsing(deep, "too deeply nested document", 1025)}};
        for (const auto &[json, message] : documents) {
            QVERIFY(!load(json));
            QCOMPARE(fixture->takeLog(LogMessageType::warning),
                     message.isEmpty() ? QStringList() : QStringList(message));
            QVERIFY(!fixture->node(name));
            QVERIFY(fixture->backends().getBackendNames().isEmpty());
        }
    }

    void dataWithoutText()
    {
        const QString function = "JsonBackend::loadAttributesCreateDataInternal() ";
        QVERIFY(load(fileName));
        QCOMPARE(fixture->takeLog(LogMessageType::log),
                 QStringList(function + "json file '%1' does not exist, nothing loaded"_s.arg(fileName)));
        QVERIFY(fixture->values(name).isEmpty());
        QVERIFY(fixture->backends().hasBackend(name));
        QVERIFY(fixture->create("json"_s, "empty"_s, QByteArray()));
        QCOMPARE(fixture->takeLog(LogMessageType::log),
                 QStringList(function + "json data is empty, nothing loaded"));
        for (const QVariant &data : {QVariant(QPoint(1, 2)), QVariant()}) {
            QVERIFY(!fixture->create("json"_s, "other"_s, data));
            QCOMPARE(fixture->takeLog(LogMessageType::warning),
                     QStringList(function
                                 + "provided backend create data not provided as file name (QString) or json "
                                   "data (QByteArray), received type="
                                 + data.typeName()));
        }
    }

    void comesBackAsSaved()
    {
        const QByteArray json = R"({"a":{"b":[1,[true,"x"],{"c":"d"}]},"e":-0.25})";
        write(json);
        QVERIFY(load(fileName));
        QVERIFY(QFile::remove(fileName));
        QVERIFY(save());
        QCOMPARE(directory->read(fileName), QJsonDocument::fromJson(json).toJson());
    }

    void savesWhatTheTreeHolds()
    {
        write("{\"x\":1}");
        QVERIFY(load(fileName));
        // A value with children, one in brackets, one that cannot be read, a plain node, and an order of its
        // own.
        QVERIFY(add("a", 1) && add("a.b", 2) && add("a.<c>.7", 3) && add("<v>", "text") && add("hidden", 4, 2)
                && add("<list>.1.name", "first") && add("<list>.0", "second"));
        QVERIFY(fixture->create("memory"_s, "doc.inner"_s));
        QVERIFY(add("inner.y", 5));
        QVERIFY(save());
        QCOMPARE(QJsonDocument::fromJson(directory->read(fileName)),
                 Document(R"({"x":1,"a":1,"a.b":2,"a.c":[3],"<v>":"text","hidden":{},
                              "list":[{"name":"first"},"second"],"inner":{"y":5}})"));
    }

    void skipsWhatJsonCannotHold()
    {
        QVERIFY(load(fileName));
        QVERIFY(add("point", QPoint(1, 2)) && add("<>.0", 1) && add("<a>.0", qQNaN()) && add("<a>.1", 2));
        fixture->takeLog(LogMessageType::log);
        QVERIFY(save());
        QCOMPARE(fixture->takeLog(LogMessageType::warning),
                 QStringList(
                     {"JsonBackend::saveHierarchyIntoJsonObject() skipping value of type 'QPoint' that json "
                      "cannot hold: 'point'",
                      "JsonBackend::saveHierarchyIntoJsonObject() failed to parse array attribute: <>"}));
        QCOMPARE(QJsonDocument::fromJson(directory->read(fileName)), Document(R"({"a":[null,2]})"));
    }

    void emptiesTheFileWithoutValues()
    {
        write("{\"x\":1}");
        QVERIFY(load(fileName));
        QVERIFY(fixture->node("doc.x"_s)->setDeleteFlag());
        QVERIFY(!save());
        QCOMPARE(directory->read(fileName), QByteArray());
    }

    void savesNothingBeyondTheDepthOfADocument()
    {
        const QString deepest = QStringList(QVector<QString>(1023, "n"_s).toList()).join('.');
        QVERIFY(load(fileName));
        QVERIFY(add(deepest, 1));
        QVERIFY(save());
        const QByteArray before = directory->read(fileName);
        QVERIFY(!QJsonDocument::fromJson(before).isNull());

        QVERIFY(add(deepest + ".n.n", 1));
        QVERIFY(!save());
        QCOMPARE(directory->read(fileName), before);
        QCOMPARE(fixture->takeLog(LogMessageType::warning),
                 QStringList("JsonBackend::saveAttributes() the tree beneath 'doc' has more than 1024 "
                             "levels, nothing saved to json file '%1'"_s.arg(fileName)));
    }

    void keepsTheOldFileOnAFullDisk()
    {
        const QByteArray before = R"({"x":"a text of more than a few bytes"})";
        write(before);
        QVERIFY(load(fileName));
        {
            const TestSupport::FullDisk full(10);
            QVERIFY(!save());
        }
        QCOMPARE(directory->read(fileName), before);
        QCOMPARE(QDir(directory->path()).entryList(QDir::Files).size(), 1);
        QVERIFY(save());
    }

    void followsLinks()
    {
        const QString link = directory->filePath("link.json"_s);
        write("{\"x\":1}");
        QVERIFY(QFile::link(fileName, link));
        QVERIFY(load(link));
        QVERIFY(add("x", 2));
        QVERIFY(save());
        QVERIFY(QFileInfo(link).isSymLink());
        QCOMPARE(QJsonDocument::fromJson(directory->read(fileName)), Document(R"({"x":2})"));
    }

    void writesDirectlyWhereItMust()
    {
        write("{\"x\":1}");
        QVERIFY(load(fileName));
        QVERIFY(add("x", 2));
        {
            const TestSupport::ClosedFolder folder(directory->path(), fileName);
            QVERIFY(folder.isClosed());
            QVERIFY(save());
        }
        QCOMPARE(QJsonDocument::fromJson(directory->read(fileName)), Document(R"({"x":2})"));
    }

    void reportsWhatCannotBeWritten()
    {
        const QString below = directory->filePath("none/values.json"_s);
        QVERIFY(load(below));
        QVERIFY(add("x", 1));
        QVERIFY(!save());
        QCOMPARE(fixture->takeLog(LogMessageType::warning),
                 QStringList("JsonBackend::saveAttributes() json file '%1' cannot be opened for "
                             "writing, nothing saved"_s.arg(below)));

        // A device takes no replacement beside it, and this one takes no byte at all.
        const QString device = "/dev/full"_s;
        const QString other = "other"_s;
        QVERIFY(fixture->create("json_file"_s, other, fileName));
        QVERIFY(fixture->createAttribute("other.x"_s, 1));
        QVERIFY(QFile::link(device, fileName));
        QVERIFY(!fixture->backends().saveBackend(other));
        QCOMPARE(fixture->takeLog(LogMessageType::warning),
                 QStringList("JsonBackend::saveAttributes() json file '%1' cannot be written: No space "
                             "left on device"_s.arg(fileName)));
        QVERIFY(QFileInfo(fileName).isSymLink() && QFileInfo::exists(device));

        QVERIFY(fixture->create("json"_s, "bytes"_s, QByteArray("[1]")));
        QVERIFY(fixture->backends().saveBackend("bytes"_s));
    }

private:
    bool load(const QVariant &data) { return fixture->create("json"_s, name, data); }
    bool save() { return fixture->backends().saveBackend(name); }
    bool add(const QString &path, const QVariant &value, int access = 3)
    {
        return fixture->createAttribute(name + '.' + path, value, access);
    }
    void write(const QByteArray &text) { directory->write(text, "values.json"); }

    std::unique_ptr<RepositoryFixture> fixture;
    std::unique_ptr<TestSupport::Files> directory;
    const QString name = "doc"_s;
    QString fileName;
};

QTEST_GUILESS_MAIN(JsonBackendTest)
#include "JsonBackendTest.moc"
