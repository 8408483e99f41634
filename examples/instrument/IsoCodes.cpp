#include "common/ProcSampler.h"
#include "common/ProgressLine.h"
#include "IsoCodes.h"

#include <core/Library.h>

#include <QDir>
#include <QElapsedTimer>

using namespace Tessellum;

namespace {

struct Loaded
{
    int files = 0;
    int failed = 0;
    int values = 0;
    qint64 nanoseconds = 0;
    qint64 bytes = 0;
};

int countValues(AppConfig::Interfaces::RepositoryInterface &repository)
{
    int values = 0;
    for (const auto &attribute : repository.getQueryInterface()->queryAttributes(QStringLiteral("iso.*")))
        values += attribute->hasValue() ? 1 : 0;
    return values;
}

Loaded loadFiles(AppConfig::Interfaces::RepositoryInterface &repository, const QFileInfoList &files)
{
    Loaded loaded;
    ProgressLine progress;
    QElapsedTimer timer;
    const qint64 bytesBefore = ProcSampler::residentBytes();
    timer.start();
    for (const QFileInfo &file : files) {
        progress.show(
            QStringLiteral("loading %1 (%2 of %3)").arg(file.fileName()).arg(loaded.files).arg(files.size()));
        AppConfig::Backends::BackendCreateDataDetails details;
        details.data = file.absoluteFilePath();
        const QString name
            = QStringLiteral("iso.") + file.completeBaseName().replace(QLatin1Char('.'), QLatin1Char('_'));
        const bool created = repository.getBackendInterface()->createBackend(
            QStringLiteral("json"), name, details, Notification::CreatePoint::Done);
        ++loaded.files;
        loaded.failed += created ? 0 : 1;
    }
    loaded.nanoseconds = timer.nsecsElapsed();
    loaded.bytes = ProcSampler::residentBytes() - bytesBefore;
    loaded.values = countValues(repository);
    return loaded;
}

} // namespace

bool LoadIsoCodes(const QString &directory, QTextStream &out)
{
    const QFileInfoList files
        = QDir(directory).entryInfoList({QStringLiteral("*.json")}, QDir::Files, QDir::Name);
    if (files.isEmpty()) {
        out << "  FAILED  no JSON files in " << directory << Qt::endl;
        return false;
    }
    if (initializeLibrary() != 0)
        return false;
    const Loaded loaded = loadFiles(*getCoreInterface()->getAppConfigRepository(), files);
    const bool held = loaded.failed == 0 && loaded.values > 0;
    out << (held ? "  ok      " : "  FAILED  ") << loaded.values << " values from " << loaded.files
        << " files in " << loaded.nanoseconds / 1000000 << " ms";
    if (loaded.values > 0)
        out << ", " << loaded.nanoseconds / loaded.values << " ns and " << loaded.bytes / loaded.values
            << " bytes of memory for a value";
    out << Qt::endl;
    return uninitializeLibrary() == 1 && held;
}
