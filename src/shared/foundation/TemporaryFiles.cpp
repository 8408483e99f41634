#include <shared/foundation/platform/Processes.h>
#include <shared/foundation/StringHelpers.h>
#include <shared/foundation/TemporaryFiles.h>
#include <shared/logging/FrameworkLog.h>

#include <QDir>
#include <QtConcurrentRun>

using Shared::Logging::FrameworkLog;

namespace Shared {

namespace {

QString FileNameOfAll(const QString &rest)
{
    return QStringLiteral("{51743F95-66DE-45AA-81ED-B61A4B3ECFDF}%1").arg(rest);
}

QString ValidName(const QString &name)
{
    return ReplaceInvalidFilePathCharacters(name, QLatin1Char('_'));
}

void RemoveStaleFiles(const QString &pattern)
{
    QDir folder = QDir::temp();
    FrameworkLog().log() << "TempFileCleaner::TempFileCleaner() cleaning directory=" << folder.absolutePath()
                         << " fileName=" << pattern;
    QStringList found;
    const QStringList all = folder.entryList(QDir::Files | QDir::System | QDir::Hidden);
    for (const QString &name : all) {
        if (WildcardStringCompare(name.constData(), pattern.constData()))
            found.append(name);
    }
    if (found.isEmpty())
        return;
    namespace Platform = Foundation::Platform;
    const auto used = Platform::OpenFiles(QFile::encodeName(folder.canonicalPath()));
    for (const QString &name : qAsConst(found)) {
        const QString path = folder.absoluteFilePath(name);
        if (!used.contains(Platform::IdentityOfFile(QFile::encodeName(path))) && folder.remove(name)) {
            FrameworkLog().log() << "TempFileCache::TempFileCache() removing stalled temporary file=" << path;
        }
    }
}

} // namespace

std::shared_ptr<QTemporaryFile> CreateTemporaryFile(const QString &name)
{
    static const QString basePath = QDir::temp().absoluteFilePath(FileNameOfAll(QStringLiteral(".XXXXXX")));
    auto file = std::make_shared<QTemporaryFile>(basePath + ValidName(name));
    file->setAutoRemove(true);
    return file;
}

QFuture<void> CleanTemporaryFiles(const QString &name)
{
    return QtConcurrent::run(RemoveStaleFiles, FileNameOfAll(QStringLiteral(".*")) + ValidName(name));
}

} // namespace Shared
