#include <appconfig/attributes/AttributeCreation.h>
#include <appconfig/backends/AutomaticConstraintsBackendLoader.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appconfig/validation/AttributeValidationRepository.h>
#include <appdata/DataMetatypes.h>
#include <appdata/memory_strategy/MemoryStrategyRepository.h>
#include <appdata/utils/RepositoryProvider.h>
#include <core/CoreSequences.h>
#include <core/utils/LibraryFile.h>
#include <core/utils/LibraryHash.h>
#include <core/utils/StartFault.h>
#include <core/VersionRecords.h>
#include <notification/NotificationThreadPool.h>
#include <notification/Observer.h>
#include <notification/RepositoryHierarchyThreadProvider.h>
#include <notification/TaskPoints.h>
#include <notification/utils/MakeNode.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>
#include <shared/hierarchy/HierarchyNodeLink.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QThread>

#include <utility>

namespace Tessellum::Core {

namespace {

using AppConfig::Attributes::AttributeAccess;
using AppConfig::Attributes::AttributeCreateData;
using AppConfig::utils::RepositoryProvider;
using DataRepositoryProvider = AppData::utils::RepositoryProvider;
using NodePtr = RepositoryProvider::NodePtr;

template <class T>
void appendMetatype(QList<int> &types, const char *name)
{
    types.append(qRegisterMetaType<T>(name));
}

QList<int> registerTypes()
{
    using namespace Notification;
    QList<int> types;
    appendMetatype<UpdateResult>(types, "Tessellum::Notification::UpdateResult");
    appendMetatype<UpdatePoint>(types, "Tessellum::Notification::UpdatePoint");
    appendMetatype<CreatePoint>(types, "Tessellum::Notification::CreatePoint");
    appendMetatype<DeletePoint>(types, "Tessellum::Notification::DeletePoint");
    appendMetatype<CreateObserver::ResultType>(types, "Tessellum::Notification::CreateObserver::ResultType");
    appendMetatype<UpdateObserver::ResultType>(types, "Tessellum::Notification::UpdateObserver::ResultType");
    appendMetatype<DeleteObserver::ResultType>(types, "Tessellum::Notification::DeleteObserver::ResultType");
    return types + AppData::RegisterDataMetatypes();
}

bool writeSetting(Shared::SettingsWrapper::SettingsWrapper &settings, const NodePtr &root, const QString &key,
                  const QVariant &value)
{
    const QString section = QStringLiteral("repository");
    if (settings.hasEntry(section, key)) {
        switch (static_cast<QMetaType::Type>(value.userType())) {
        case QMetaType::Bool:
            return settings.writeSetting<bool>(section, key, value.toBool());
        case QMetaType::Int:
            return settings.writeSetting<int>(section, key, value.toInt());
        default:
            return settings.writeSetting<QString>(section, key, value.toString());
        }
    }
    AttributeCreateData::AttributeCreateDataDetails details;
    details.value = value;
    details.access = AttributeAccess::Read | AttributeAccess::Write;
    return AppConfig::Attributes::CreateAttributeInHierarchy(
        root, AttributeCreateData(settings.getPathFromSectionAndKey(section, key), details));
}

NodePtr findOrCreateParent(const NodePtr &root, const QString &id)
{
    if (const NodePtr present = root->getChildById(id))
        return present;
    const auto made = Notification::utils::MakeNode<Shared::Hierarchy::HierarchyNodeInstance>(id);
    return root->addChild(made) ? NodePtr(made) : root->getChildById(id);
}

/*! A failed start leaves its lists: the next one must not take its own entries for a clash. */
bool holdsValue(HierarchyListPattern &list, const QString &name, const QString &expected)
{
    const auto element = list.getElement(name);
    QVariant value;
    return element && element->getValue(value, QMetaType::QString) && value.toString() == expected;
}

bool linkInternalSettings(RepositoryProvider &provider, const NodePtr &target)
{
    const QString name = QStringLiteral("internal");
    const NodePtr root = provider.getRoot();
    // A failed start leaves its link.
    const auto present
        = std::dynamic_pointer_cast<Shared::Hierarchy::HierarchyNodeLink>(root->getChildById(name));
    return (present && present->isLinked()) || provider.addRootLink(name, target, true);
}

void loadAutomaticConstraints(const QString &libraryFile, const NodePtr &root)
{
    if (libraryFile.isEmpty())
        return;
    const QString file = QFileInfo(libraryFile).dir().absoluteFilePath(QStringLiteral("constraints.ini"));
    AppConfig::Backends::AutomaticConstraintsBackendLoader(file, QStringLiteral("constraints"), root);
}

bool addMissingTypes(const QString &list, const QStringList &keys, const QString &description)
{
    const auto pattern = RepositoryProvider::getInstance()->getListPattern(QStringLiteral("types"), list);
    if (!pattern)
        return false;
    for (const QString &key : keys) {
        if (!pattern->hasElement(key))
            pattern->addElementToList(key, QVariant(description + key), false);
    }
    return true;
}

/*! Lets go of \a keeper and returns when the nodes beneath it are gone. */
void endNodes(NodePtr &keeper)
{
    RepositoryHierarchyThreadProvider *const events = RepositoryHierarchyThreadProvider::getInstance();
    // Nobody delivers events then, and the nodes die on this thread: the other one must be out of them.
    if (!QCoreApplication::instance())
        events->quitAndJoin();
    keeper.reset();
    events->barrier();
}

} // namespace

bool registerMetatypes()
{
    const QList<int> types = registerTypes();
    const auto list = RepositoryProvider::getInstance()->getListPattern(QStringLiteral("metatypes"),
                                                                        QStringLiteral("repository"));
    bool result = true;
    if (list) {
        for (const int type : types) {
            const QString name = QString::fromLatin1(QMetaType::typeName(type));
            if (!holdsValue(*list, QString::number(type), name))
                result = list->addElementToList(QString::number(type), name, true) && result;
        }
    }
    return result;
}

bool registerInternalSettings(const QString &libraryFile)
{
    RepositoryProvider *const provider = RepositoryProvider::getInstance();
    const auto settings = provider->getSettings();
    const NodePtr root = provider->getInternalRoot();
    const std::pair<QString, QVariant> entries[] = {
        {QStringLiteral("update_threads"), QThread::idealThreadCount()},
        {QStringLiteral("automatic_create_through_updates"), true},
        {QStringLiteral("path_separator"), QStringLiteral(".")},
        {QStringLiteral("list_separators"), QStringLiteral(";")},
        {QStringLiteral("library_hash"), utils::LibraryHash()},
        {QStringLiteral("names_ignore_case"), true},
    };
    bool result = true;
    for (const auto &[key, value] : entries)
        result = writeSetting(*settings, root, key, value) && result;
    result = linkInternalSettings(*provider, root) && result;
    loadAutomaticConstraints(libraryFile, root);
    return result;
}

bool attachListNodes()
{
    RepositoryProvider *const provider = RepositoryProvider::getInstance();
    const NodePtr root = provider->getInternalRoot();
    bool result = true;
    for (const auto &[names, list] : provider->getListPatterns()) {
        const NodePtr parent = findOrCreateParent(root, names.first);
        // After a failed start the list hangs there already, and stays.
        const bool attached
            = parent && (parent->getChildById(names.second) == list || parent->addChild(list));
        result = attached && result;
    }
    return result;
}

bool registerTypeLists()
{
    const bool backends = addMissingTypes(QStringLiteral("backends"),
                                          RepositoryProvider::getInstance()->getRegisteredProductIdentifier(),
                                          QStringLiteral("Backend: "));
    const bool storages = addMissingTypes(
        QStringLiteral("storages"), DataRepositoryProvider::getInstance()->getRegisteredProductIdentifier(),
        QStringLiteral("Storage: "));
    const bool validations = addMissingTypes(
        QStringLiteral("validations"),
        AppConfig::Validation::AttributeValidationRepository::getInstance()->getRegisteredProductIdentifier(),
        QStringLiteral("Validation: "));
    const bool strategies = addMissingTypes(
        QStringLiteral("memory_strategy"),
        AppData::MemoryStrategies::MemoryStrategyRepository::getInstance()->getRegisteredProductIdentifier(),
        QStringLiteral("MemoryStrategy: "));
    return backends || storages || validations || strategies;
}

bool startCore()
{
    NodePtr noKeeper;
    RepositoryProvider::getInstance()->setRepositoryActive(noKeeper, false);
    DataRepositoryProvider::getInstance()->setRepositoryActive(false);
    const QString libraryFile = utils::LibraryFilePath();
    bool result = registerVersionInformation(VersionInformationList{LibraryVersionRecord(libraryFile)}
                                             + rememberedPluginRecords());
    result = registerMetatypes() && result;
    result = registerInternalSettings(libraryFile) && result;
    result = attachListNodes() && result;
    result = registerTypeLists() && result;
    result = !utils::IsStartFaultRequested() && result;
    Notification::setNotificationPoolRunning(true);
    return result;
}

bool stopCore()
{
    NodePtr keeper = Notification::utils::MakeNode<Shared::Hierarchy::HierarchyNodeInstance>();
    Notification::setNotificationPoolRunning(false);
    // What runs there uses the configuration, whose providers are about to go.
    DataRepositoryProvider::getInstance()->endTasks();
    RepositoryProvider::getInstance()->setRepositoryActive(keeper, true);
    endNodes(keeper);
    DataRepositoryProvider::getInstance()->setRepositoryActive(true);
    RepositoryHierarchyThreadProvider::getInstance()->barrier();
    return true;
}

} // namespace Tessellum::Core
