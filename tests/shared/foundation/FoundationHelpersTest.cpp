#include <shared/foundation/GuiContexts.h>
#include <shared/foundation/NetworkAddresses.h>
#include <shared/foundation/ProcessHelpers.h>
#include <shared/foundation/StandardDirectories.h>
#include <shared/foundation/StringHelpers.h>
#include <shared/foundation/TemporaryFiles.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <climits>
#include <csignal>
#include <cstdlib>
#include <support/Literals.h>
#include <support/LogCapture.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

const auto mark = "{51743F95-66DE-45AA-81ED-B61A4B3ECFDF}"_s;
const auto outlive = "--outlive-the-first-thread"_s;

} // namespace

class FoundationHelpersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fileNames_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QChar>("replacement");
        QTest::addColumn<QString>("name");
        const auto add = [](const char *text, char replacement, const char *name) {
            QTest::newRow(text) << QString(text) << QChar(QLatin1Char(replacement)) << QString(name);
        };
        add("a:b", '_', "a_b");
        add("<>:\"/\\|?*x", '-', "---------x");
        add("a/b", '|', "a_b"); // no way to replace one by another
        add("COM1", '_', "_COM1_");
        add("LPT9", '-', "-LPT9-");
        add("NUL", '.', ".NUL"); // what is put behind goes again
        add("COM0", '_', "COM0");
        add("com1", '_', "com1");
        add("COM1.txt", '_', "COM1.txt");
        add("AUX.", '_', "AUX"); // looked at before the point goes
        add("name. ", '_', "name");
        add(" a. . .", '_', " a");
        add(". .", '_', "");
    }
    void fileNames()
    {
        QFETCH(QString, text);
        QFETCH(QChar, replacement);
        QTEST(Shared::ReplaceInvalidFilePathCharacters(text, replacement), "name");
    }

    void randomAndWhiteSpace()
    {
        QVERIFY(Shared::GetRandomAlphaNumericString(0).isEmpty());
        std::srand(7);
        const QString text = Shared::GetRandomAlphaNumericString(5000);
        std::srand(7);
        QCOMPARE(Shared::GetRandomAlphaNumericString(5000), text);
        QCOMPARE(QSet<QChar>(text.begin(), text.end()).size(), 62);
        QVERIFY(QRegularExpression("^[0-9A-Za-z]{5000}$").match(text).hasMatch());

        QSet<int> seen;
        for (int count = 0; count < 1000; ++count)
            seen += {Shared::CreateRandomValue(-1, 1), Shared::CreateRandomValue(1, -1)};
        QCOMPARE(seen, QSet<int>({-1, 0, 1}));
        QCOMPARE(Shared::CreateRandomValue(INT_MAX, INT_MAX), INT_MAX);
        Shared::CreateRandomValue(INT_MIN, INT_MAX); // must not overflow

        QCOMPARE(Shared::RemoveWhiteSpaces(QString::fromUtf8(" a\tb\u00a0\u2003c\r\n")), "abc"_s);
    }

    void addresses()
    {
        QCOMPARE(Shared::ConvertIPStringToIP("192.168.010.001"_s), 0xC0A80A01u);
        QCOMPARE(Shared::ConvertIPToIPString(0xC0A80A01u), "192.168.10.1"_s);
        QCOMPARE(Shared::NormalizeIPString("010.00.000.09"_s), "10.0.0.9"_s);
        QCOMPARE(Shared::ConvertIPStringToIP("255.255.255.255"_s), 0xFFFFFFFFu);
        for (const char *nonsense : {"", "300.1.1.1", "1.2.3.4.5", "-1.0.0.0", "x"})
            QCOMPARE(Shared::ConvertIPStringToIP(nonsense), 0u);
    }

    void directories()
    {
        QCOMPARE(Shared::GetDataDirectory(),
                 QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
        QVERIFY(Shared::GetConfigurationDirectory().endsWith(QCoreApplication::applicationName()));
        QCOMPARE(Shared::GetPublicDocumentsDirectory(), Shared::GetDocumentsDirectory());
    }

    void processes()
    {
        QVERIFY(Shared::CheckIfProcessIdIsRunning(getpid()));
        for (const int none : {0, -1, -getpid(), INT_MAX}) {
            QVERIFY(!Shared::CheckIfProcessIdIsRunning(none));
            QVERIFY(!Shared::TerminateProcessById(none));
        }
        // The number of a thread is known to the system, but is no process.
        QSemaphore told, ended;
        pid_t threadId = 0;
        std::thread thread([&] {
            threadId = gettid();
            told.release();
            ended.acquire();
        });
        told.acquire();
        const bool isProcess = Shared::CheckIfProcessIdIsRunning(threadId);
        ended.release();
        thread.join();
        QVERIFY(!isProcess);

        const pid_t child = fork();
        if (child == 0) {
            pause();
            _exit(0);
        }
        QVERIFY(Shared::CheckIfProcessIdIsRunning(child));
        QVERIFY(Shared::TerminateProcessById(child));
        siginfo_t end{};
        QCOMPARE(waitid(P_PID, id_t(child), &end, WEXITED | WNOWAIT), 0);
        // It has ended, though its parent has not heard of it.
        QVERIFY(!Shared::CheckIfProcessIdIsRunning(child));
        QVERIFY(!Shared::TerminateProcessById(child));
        QCOMPARE(waitpid(child, nullptr, 0), child);
        QCOMPARE(end.si_status, SIGKILL);
    }

    void processThatOutlivesItsFirstThread()
    {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {outlive});
        QVERIFY(child.waitForStarted());
        const auto isFirstThreadDead = [&] {
            QFile file("/proc/%1/stat"_s.arg(child.processId()));
            return file.open(QIODevice::ReadOnly) && file.readAll().contains(") Z ");
        };
        QTRY_VERIFY_WITH_TIMEOUT(isFirstThreadDead(), 30000);
        const int id = int(child.processId());
        QVERIFY(Shared::CheckIfProcessIdIsRunning(id));
        QVERIFY(Shared::TerminateProcessById(id));
        QVERIFY(child.waitForFinished());
    }

    void temporaryFiles()
    {
        const auto file = Shared::CreateTemporaryFile("a:b."_s);
        QVERIFY(file->open());
        const QFileInfo info(*file);
        QCOMPARE(info.absolutePath(), QDir::tempPath());
        QVERIFY2(QRegularExpression(QRegularExpression::escape(mark + '.') + "[A-Za-z]{6}a_b$")
                     .match(info.fileName())
                     .hasMatch(),
                 qPrintable(info.fileName()));

        const QDir folder = QDir::temp();
        const auto leave = [&](const QString &end) {
            const QString path = folder.absoluteFilePath(mark + end);
            QFile left(path);
            return left.open(QIODevice::WriteOnly) ? path : QString();
        };
        const QString ours = leave(".leftXxa_b"_s);
        const QString other = leave(".leftXxc[d]"_s);
        const QString foreign = leave("a_b"_s); // not of this make
        const TestSupport::LogCapture log;
        Shared::CleanTemporaryFiles("a:b."_s).waitForFinished();
        QVERIFY(!QFile::exists(ours));
        QVERIFY(QFile::exists(other) && QFile::exists(foreign));
        QVERIFY(file->exists()); // this process has it open
        QCOMPARE(log.lines(),
                 QStringList({"LOG TempFileCleaner::TempFileCleaner() cleaning directory=" + folder.path()
                                  + " fileName=" + mark + ".*a_b",
                              "LOG TempFileCache::TempFileCache() removing stalled temporary file=" + ours}));

        Shared::CleanTemporaryFiles("c[d]"_s).waitForFinished();
        QVERIFY(!QFile::exists(other));
        QFile::rename(foreign, other);
        Shared::CleanTemporaryFiles({}).waitForFinished();
        QVERIFY(!QFile::exists(other));
        QVERIFY(file->exists());
    }

    void contexts()
    {
        using namespace Shared::GuiContexts;
        const auto prefixed = std::make_shared<PrefixedGuiContexts>(QStringList{"app", "ui"});
        QStringList keys;
        for (int number = 0; number <= 8; ++number)
            keys += prefixed->getGuiContextByType(Type(number));
        keys.removeAll("app"_s);
        keys.removeAll("ui"_s);
        QCOMPARE(keys,
                 QStringList({"versions", "widgets", "navigation", "modules", "settings", "resources",
                              "applications"}));
        QCOMPARE(prefixed->getGuiContextByType(Type::Settings), QStringList({"app", "ui", "settings"}));
        QVERIFY(!prefixed->isGuiContextSet(Type(8)));

        SuffixedGuiContexts suffixed(prefixed, {"main"});
        prefixed->setGuiContextByType(Type::Settings, {"elsewhere"});
        QCOMPARE(suffixed.getGuiContextByType(Type::Settings),
                 QStringList({"app", "ui", "settings", "main"}));
        suffixed.updateContextByType(Type::Settings);
        QCOMPARE(suffixed.getGuiContextByType(Type::Settings), QStringList({"elsewhere", "main"}));
        QVERIFY(!SuffixedGuiContexts(nullptr, {"main"}).isGuiContextSet(Type::Widgets));
    }
};

int main(int argc, char *argv[])
{
    if (argc > 1 && outlive == QLatin1String(argv[1])) {
        std::thread([] { pause(); }).detach();
        syscall(SYS_exit, 0); // of this thread alone
    }
    // A folder of its own: other processes' temporary files are none of this test's business.
    QTemporaryDir folder;
    qputenv("TMPDIR", QFile::encodeName(folder.path()));
    QCoreApplication application(argc, argv);
    FoundationHelpersTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "FoundationHelpersTest.moc"
