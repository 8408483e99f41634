#pragma once

#include <appconfig/attributes/Attribute.h>
#include <appconfig/utils/AttributesManipulationProvider.h>
#include <appconfig/utils/AttributesQueryProvider.h>
#include <appconfig/utils/RepositoryBackendProvider.h>
#include <appconfig/utils/RunningRepository.h>

#include <QMap>

#include <support/Literals.h>
#include <support/LogCapture.h>

// The repository, active for the length of a test, and what the backends' classes log meanwhile.
class RepositoryFixture : private RunningRepository
{
public:
    using CreatePoint = Tessellum::Notification::CreatePoint;
    using Values = QMap<QString, QVariant>;

    RepositoryFixture()
        : RunningRepository(false)
    { }
    Q_DISABLE_COPY(RepositoryFixture)

    Tessellum::AppConfig::utils::RepositoryProvider &repository() { return provider(); }
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
        const QString prefix = QString(Shared::Logging::LogLevel(level)) + ' ';
        const QStringList lines = log.lines();
        QStringList texts;
        for (const QString &line : lines.mid(taken)) {
            if (line.startsWith(prefix) && (line.contains("Backend") || line.contains("CreateTask")))
                texts.append(line.mid(prefix.size()));
        }
        taken = lines.size();
        return texts;
    }

private:
    TestSupport::LogCapture log;
    int taken = 0;
};
