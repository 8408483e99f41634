#pragma once

#include <appdata/storages/StoragePlugin.h>

#include <QLibrary>

namespace TestSupport {

using Tessellum::AppData::Storages::StorageCreateData;
using Tessellum::AppData::Storages::StorageFactory;
using Tessellum::AppData::Storages::StorageImplementation;

// Makes a storage of the plug-in in \a file, as the library would; null where there is none of that type.
inline std::shared_ptr<StorageImplementation> MakeStorage(const QString &file, const StorageCreateData &data)
{
    using EntryFunction
        = int (*)(QList<Shared::VersionInformation::VersionInformation> *, StorageFactory *, const QString &);
    QLibrary library(file);
    const auto enter = reinterpret_cast<EntryFunction>(library.resolve("registerStorageInstance"));
    if (!enter) {
        qWarning("%s", qPrintable(library.errorString()));
        return nullptr;
    }
    QList<Shared::VersionInformation::VersionInformation> versions;
    StorageFactory factory;
    enter(&versions, &factory, QString());
    const auto creator = factory.getCreator(data.type);
    return creator && versions.size() == 1 ? creator(data) : nullptr;
}

// A storage at \a location.
inline std::shared_ptr<StorageImplementation> MakeStorage(const QString &file, const QString &type,
                                                          const QVariant &location, qint32 mode = 0)
{
    Tessellum::AppData::Storages::StorageCreateDataDetails details;
    details.mode = mode;
    details.location = location;
    return MakeStorage(file, StorageCreateData(QStringLiteral("test"), type, QString(), details));
}

} // namespace TestSupport
