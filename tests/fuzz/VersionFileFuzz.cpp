// Whatever a version file holds: it gives a record with the entries of one.
#include <shared/foundation/VersionInformation.h>

#include <QFile>
#include <QTemporaryDir>

#include <fuzz/FuzzInput.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir folder;
    static quint64 run = 0;
    // Qt keeps what it read of a file by its name.
    QFile file(folder.filePath(QString::number(++run)));
    Fuzz::Require(file.open(QIODevice::WriteOnly)
                  && file.write(reinterpret_cast<const char *>(data), qint64(size)) == qint64(size));
    file.close();
    Shared::VersionInformation::VersionInformation record;
    Fuzz::Require(record.addVersionInformationData(QStringLiteral("fuzz"), file.fileName(), QString()));
    for (const auto identifier : record.getVersionIdentifierMapping().getIdentifiers())
        record.getVersionInformationByIdentifier(identifier);
    file.remove();
    return 0;
}
