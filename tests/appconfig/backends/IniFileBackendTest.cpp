#include "RepositoryFixture.h"

#include <QTemporaryDir>
#include <QtTest>

using Shared::Logging::LogMessageType;

/*! INI files as attributes. */
class IniFileBackendTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void fileComesAndGoesWhole()
    {
        RepositoryFixture fixture;
        const QString file = write("[net]\nport = 8080\nhost.name=\"a b\"\n[log]\nport=1\n");
        QVERIFY(fixture.create("inifile", "ini", file));
        QCOMPARE(
            fixture.values("ini"),
            RepositoryFixture::Values({{"net.port", "8080"}, {"net.host.name", "a b"}, {"log.port", "1"}}));
        QVERIFY(fixture.createAttribute("ini.net.port", 9));
        QVERIFY(fixture.createAttribute("ini.new.key", "x\ny"));
        QVERIFY(fixture.createAttribute("ini.loose", "in no section"));
        QVERIFY(fixture.backends().saveBackend("ini"));
        QCOMPARE(read(file),
                 QByteArray("[log]\nport=\"1\"\n[net]\nhost.name=\"a b\"\nport=\"9\"\n[new]\nkey=\"x y\"\n"));

        QVERIFY(fixture.create("ini", "locked", file, 1));
        const auto attribute = fixture.repository().getQueryProvider()->findAttribute("locked.net.port");
        QVERIFY(attribute && attribute->getAccess() == 1);
    }

    void missingAndEmptyFiles()
    {
        RepositoryFixture fixture;
        const QString missing = folder.filePath("missing.ini");
        QVERIFY(fixture.create("ini_file", "none", missing));
        QCOMPARE(fixture.takeLog(LogMessageType::log),
                 QStringList("IniFileBackend::loadAttributesCreateDataInternal() ini file '" + missing
                             + "' does not exist, no attributes loaded"));
        QVERIFY(fixture.backends().saveBackend("none"));
        QVERIFY(QFile::exists(missing));
        QVERIFY(!fixture.create("ini", "empty", write("[section]\n\n")));
        QVERIFY(fixture.create("ini", "folder", folder.path()));
        QVERIFY(!fixture.backends().saveBackend("folder"));
    }

    void oddLines()
    {
        RepositoryFixture fixture;
        const QString file
            = write("early=1\n[a]\n=no key\nb..c=2\nno separator\nd=3\n[x\n[e.f]\ng==4\n\x01\xff=\n");
        QVERIFY(fixture.create("ini", "odd", file));
        QCOMPARE(fixture.values("odd").value("a.d"), QVariant("3"));
        QCOMPARE(fixture.values("odd").value("e.f.g"), QVariant("=4"));
        QVERIFY(fixture.backends().saveBackend("odd"));
        const QByteArray saved = read(file);
        // What has no place in the tree stays in the file.
        for (const char *line : {"early=\"1\"", "=\"no key\"", "b..c=\"2\"", "d=\"3\"", "g=\"=4\""})
            QVERIFY2(saved.contains(line), line);
    }

private:
    QString write(const QByteArray &content)
    {
        QFile file(folder.filePath(QString::number(++files)));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write the test's file");
        return file.fileName();
    }
    static QByteArray read(const QString &name)
    {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

    QTemporaryDir folder;
    int files = 0;
};

QTEST_GUILESS_MAIN(IniFileBackendTest)
#include "IniFileBackendTest.moc"
