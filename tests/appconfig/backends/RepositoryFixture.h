#pragma once

#include <appconfig/attributes/Attribute.h>
#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/AttributesQueryProvider.h>
#include <appconfig/utils/RepositoryBackendProvider.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <notification/RepositoryHierarchyThreadProvider.h>
#include <shared/logging/LogHandler.h>

#include <QMap>
#include <QMutex>

#include <support/Literals.h>

// The repository, active for the length of a test, and what the backends' classes log meanwhile.
class RepositoryFixture
{
public:
    using CreatePoint = Tessellum::Notification::CreatePoint;
    using Values = QMap<QString, QVariant>;

    RepositoryFixture()
        : sink(Shared::Logging::LogHandler::RegisterMessageSink(
            [this](const Shared::Logging::LogMessageContext &, const Shared::Logging::LogLevel &level,
                   const QString &text) {
                const QMutexLocker lock(&mutex);
                if (text.contains(QLatin1String("Backend")) || text.contains(QLatin1String("CreateTask")))
                    lines.append({Shared::Logging::LogMessageType(level), text});
            }))
    {
        repository().setRepositoryActive(keeper, false);
    }
    ~RepositoryFixture()
    {
        repository().setRepositoryActive(keeper, true);
        keeper.reset();
        // The nodes die on the event thread, and need the application object for that.
        Tessellum::Core::RepositoryHierarchyThreadProvider::getInstance()->barrier();
        Shared::Logging::LogHandler::UnregisterMessageSink(sink);
    }
    Q_DISABLE_COPY(RepositoryFixture)

    Tessellum::AppConfig::utils::RepositoryProvider &repository()
    {
        return *Tessellum::AppConfig::utils::RepositoryProvider::getInstance();
    }
    Tessellum::AppConfig::utils::RepositoryBackendProvider &backends()
    {
        return *repository().getBackendProvider();
    }

    bool create(const QString &type, const QString &name, const QVariant &data = QVariant(),
                quint32 access = 3)
    {
        return backends().createBackend(type, name, {data, QString(), access}, CreatePoint::Done);
    }
    bool createAttribute(const QString &path, const QVariant &value, int access = 3)
    {
        return repository().getManipulationProvider()->createAttribute(path, value, CreatePoint::Done,
                                                                       access);
    }

    std::shared_ptr<Shared::Hierarchy::HierarchyNode> node(const QString &path)
    {
        return repository().getRoot()->findChildByRelativePath(path);
    }
    // The values beneath \a path by their path relative to it.
    Values values(const QString &path)
    {
        Values found;
        const auto attributes = repository().getQueryProvider()->findAttributes(path + ".*"_s);
        for (const auto &attribute : attributes) {
            QVariant value;
            if (attribute->hasValue() && attribute->getValue(value, 0))
                found.insert(attribute->getPath().mid(path.size() + 1), value);
        }
        return found;
    }

    // The lines of the level since the last call, of all levels.
    QStringList takeLog(Shared::Logging::LogMessageType level)
    {
        const QMutexLocker lock(&mutex);
        QStringList texts;
        for (const auto &line : qAsConst(lines)) {
            if (line.first == level)
                texts.append(line.second);
        }
        lines.clear();
        return texts;
    }

private:
    std::shared_ptr<Shared::Hierarchy::HierarchyNode> keeper;
    QMutex mutex;
    QList<QPair<Shared::Logging::LogMessageType, QString>> lines; // guarded by mutex
    const QString sink;
};
