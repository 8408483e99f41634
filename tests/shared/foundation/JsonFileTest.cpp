#include <shared/foundation/JsonFile.h>
#include <shared/foundation/RapidJsonValidator.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

#include <support/Files.h>
#include <support/LogCapture.h>

using namespace Shared;
using JsonValidation::RapidJsonValidator;
using JsonValidation::ValidateJsonAgainstSchema;

/*! JSON files, and documents against schemas. */
class JsonFileTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void filesAreLoaded()
    {
        const TestSupport::LogCapture log;
        QJsonParseError error;
        QCOMPARE(LoadJsonFromFile(QFileInfo(folder.write("{\"a\":1}")), &error).object(),
                 QJsonObject({{"a", 1}}));
        QCOMPARE(error.error, QJsonParseError::NoError);
        QCOMPARE(log.lines(), QStringList());

        QVERIFY(LoadJsonFromFile(QFileInfo(folder.filePath("none")), nullptr).isNull());
        QCOMPARE(log.lines().last(),
                 "WARNING Shared::LoadJsonFromFile could not open file=" + folder.filePath("none"));
        QVERIFY(LoadJsonFromFile(QFileInfo(folder.path()), nullptr).isNull());

        const QFileInfo broken(folder.write("{\"a\":}"));
        QVERIFY(LoadJsonFromFile(broken, &error).isNull());
        QVERIFY(error.error != QJsonParseError::NoError);
        QCOMPARE(log.lines().mid(2),
                 QStringList({"WARNING Shared::LoadJsonFromFile failed in JSON conversion of file="
                                  + broken.filePath() + " with Error=" + error.errorString()
                                  + " Offset=" + QString::number(error.offset),
                              "WARNING Shared::LoadJsonFromFile failed in binary JSON conversion of file="
                                  + broken.filePath()}));

        QT_WARNING_PUSH
        QT_WARNING_DISABLE_DEPRECATED
        const QFileInfo binary(folder.write(QJsonDocument(QJsonArray{1, "b"}).toBinaryData()));
        QT_WARNING_POP
        QCOMPARE(LoadJsonFromFile(binary, &error).array(), QJsonArray({1, "b"}));
        QVERIFY(error.error != QJsonParseError::NoError);
        QCOMPARE(log.lines().size(), 5);
    }

    void valuesBecomeDocuments()
    {
        const QJsonObject object{{"a", 1.5}};
        QJsonParseError error;
        for (const QVariant &value :
             {QVariant("{\"a\":1.5}"), QVariant(QByteArray("{\"a\":1.5}")), QVariant(object),
              QVariant(object.toVariantMap()), QVariant(QJsonDocument(object))}) {
            QCOMPARE(ConvertVariantToJsonDocument(value, &error).object(), object);
            QCOMPARE(error.error, QJsonParseError::NoError);
        }
        QCOMPARE(ConvertVariantToJsonDocument(QVariantList{1}, nullptr).array(), QJsonArray{1});
        for (const QVariant &bad : {QVariant("{"), QVariant(5)}) {
            QVERIFY(ConvertVariantToJsonDocument(bad, &error).isNull());
            QVERIFY(error.error != QJsonParseError::NoError);
        }
    }

    void documentsAreValidated();
    void faultsAreTold();
    void badSchemasAreRefused();
    void deepTextsEnd();

private:
    TestSupport::Files folder;
};

void JsonFileTest::documentsAreValidated()
{
    const char *const tree = R"({"properties":{"next":{"$ref":"#"},"n":{"type":"integer","minimum":0}}})";
    const char *const chain = R"({"definitions":{"a":{"$ref":"#/definitions/b"},"b":{"type":"string"}},)"
                              R"("items":{"$ref":"#/definitions/a"}})";
    const char *const patterns = R"({"patternProperties":{"^(a*)*b$":{"type":"number"}},)"
                                 R"("additionalProperties":false})";
    const std::tuple<const char *, const char *, bool> cases[] = {
        {tree, R"({"n":1,"next":{"next":{"n":2}}})", true},
        {tree, R"({"n":1,"next":{"next":{"n":-2}}})", false},
        {chain, R"(["x"])", true},
        {chain, R"(["x",1])", false},
        {patterns, R"({"ab":1,"b":2})", true},
        {patterns, R"({"ab":"1"})", false},
        {patterns, R"({"ab":1,"c":1})", false},
        // What is no expression, of a wrong type or elsewhere is passed over.
        {R"({"properties":{"a":{"pattern":"("}}})", R"({"a":"x"})", true},
        {R"({"allOf":1,"enum":{},"minimum":"x","items":5,"type":"array"})", "[1]", true},
        {R"({"properties":{"a":{"$ref":"http://x/y","type":"string"}}})", R"({"a":"x"})", true},
    };
    for (const auto &[schema, document, valid] : cases) {
        const TestSupport::LogCapture log;
        QCOMPARE(
            ValidateJsonAgainstSchema(QJsonDocument::fromJson(document), QJsonDocument::fromJson(schema)),
            valid);
        QCOMPARE(log.lines().size(), valid ? 0 : 1);
    }
}

void JsonFileTest::badSchemasAreRefused()
{
    for (const char *schema : {
             R"({"$ref":"#"})",
             R"({"definitions":{"a":{"$ref":"#/definitions/b"},"b":{"$ref":"#/definitions/a"}}})",
             R"({"properties":{"a":{"not":{"anyOf":[{"$ref":"#/properties/a"}]}}}})",
             R"({"properties":{"a":{"$ref":"#/nowhere"}}})",
             R"({"a":1,"items":{"$ref":"#/a"}})",
             R"({"anyOf":[true]})",
             R"({"patternProperties":{"a":1}})",
             R"({"unknown":{"a":{"pattern":"x"},"b":{"patternProperties":true}}})",
             R"({"dependencies":{"a":[1]}})",
             "[]",
         }) {
        RapidJsonValidator validator;
        QVERIFY2(!validator.validate("{\"a\":[{}],\"b\":1}", schema), schema);
        QCOMPARE(validator.getErrors(), QStringList("Schema file is not a valid JSON "));
    }
}

void JsonFileTest::faultsAreTold()
{
    const TestSupport::LogCapture log;
    const auto schema = QJsonDocument::fromJson(R"({"properties":{"a":{"type":"string"}}})");
    QVERIFY(!ValidateJsonAgainstSchema(QJsonDocument::fromJson(R"({"a":1})"), schema));
    QCOMPARE(
        log.lines(),
        QStringList("WARNING ValidateJsonAgainstSchema() validation failed with errors: Not a valid JSON \n"
                    "Invalid Json: #/properties/a\nInvalid keyword : type \nInvalid document : #/a "));
    QVERIFY(!ValidateJsonAgainstSchema(QJsonDocument(), schema));
    QCOMPARE(log.lines().last(),
             QString("WARNING ValidateJsonAgainstSchema() validation failed with errors: Not a valid JSON \n"
                     "Error(offset 0): The document is empty.\n"));

    RapidJsonValidator validator;
    QVERIFY(!validator.validate("{\"a\"", "{}"));
    QCOMPARE(validator.getErrors().size(), 2);
    QVERIFY(!validator.validate("{}", "{\"a\":}"));
    QCOMPARE(validator.getErrors(),
             QStringList({"Schema file is not a valid JSON ", "Error(offset 5): Invalid value.\n"}));
    QCOMPARE(log.lines().last(), "WARNING " + validator.getErrors().join('\n'));
    QVERIFY(validator.validate("{}", "{}"));
    QVERIFY(validator.getErrors().isEmpty());
}

void JsonFileTest::deepTextsEnd()
{
    RapidJsonValidator validator;
    const QByteArray deep(2000000, '[');
    QVERIFY(!validator.validate("{}", deep));
    QVERIFY(!validator.validate(deep, "{}"));
    QVERIFY(validator.validate(QByteArray(500, '[') + QByteArray(500, ']'),
                               "{\"items\":{\"allOf\":[{\"$ref\":\"#\"}]}}"));
}

QTEST_GUILESS_MAIN(JsonFileTest)
#include "JsonFileTest.moc"
