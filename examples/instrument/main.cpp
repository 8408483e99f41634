#include "common/Steps.h"
#include "Instrument.h"
#include "IsoCodes.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

constexpr int usageError = 2;

void addOptions(QCommandLineParser &parser)
{
    const QString here = QCoreApplication::applicationDirPath();
    parser.setApplicationDescription(QStringLiteral(
        "Keeps an instrument's configuration and this machine's values in one tree: loads, limits, "
        "samples, saves, and starts again."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("config"), QStringLiteral("The configuration to begin with."), QStringLiteral("file"),
         here + QStringLiteral("/instrument.json")},
        {QStringLiteral("constraints"), QStringLiteral("The limits of its values."), QStringLiteral("file"),
         here + QStringLiteral("/constraints.ini")},
        {QStringLiteral("save-to"),
         QStringLiteral(
             "Work on this copy of the configuration, which stays; without it on a temporary one."),
         QStringLiteral("file")},
        {QStringLiteral("seconds"), QStringLiteral("How long to sample."), QStringLiteral("seconds"),
         QStringLiteral("3")},
        {QStringLiteral("iso-codes"), QStringLiteral("A folder of large JSON files to load at the end."),
         QStringLiteral("folder"), QStringLiteral("/usr/share/iso-codes/json")},
    });
}

bool makeWorkingCopy(const QString &from, const QString &to)
{
    QFile::remove(to);
    return QFile::copy(from, to) && QFile::setPermissions(to, QFile::ReadOwner | QFile::WriteOwner);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    addOptions(parser);
    parser.process(application);
    QTextStream out(stdout);

    bool isNumber = false;
    const double seconds = parser.value(QStringLiteral("seconds")).toDouble(&isNumber);
    if (!isNumber || seconds <= 0) {
        out << "--seconds takes a number above 0" << Qt::endl;
        return usageError;
    }
    const QTemporaryDir temporary;
    InstrumentOptions options;
    options.durationMs = static_cast<int>(seconds * 1000);
    options.constraintsFile = parser.value(QStringLiteral("constraints"));
    options.configurationFile = parser.isSet(QStringLiteral("save-to"))
        ? parser.value(QStringLiteral("save-to"))
        : temporary.filePath(QStringLiteral("instrument.json"));
    if (!makeWorkingCopy(parser.value(QStringLiteral("config")), options.configurationFile)) {
        out << "cannot copy " << parser.value(QStringLiteral("config")) << " to " << options.configurationFile
            << Qt::endl;
        return 1;
    }

    out << "The instrument" << Qt::endl;
    bool held = Instrument(options, out).run();
    out << "Large files" << Qt::endl;
    held = LoadIsoCodes(parser.value(QStringLiteral("iso-codes")), out) && held;
    return TellEnd(out, held);
}
