#pragma once

#include "../../appconfig/utils/RunningRepository.h"
#include "StorageTwin.h"

#include <appdata/data/elements/Element.h>
#include <appdata/data/entries/ClassificationNameEntry.h>
#include <appdata/data/entries/EntryInfo.h>
#include <appdata/data/entries/utils/PairLinks.h>
#include <appdata/storages/Storage.h>
#include <appdata/utils/RepositoryProvider.h>
#include <notification/utils/PoolWait.h>

#include <QDataStream>

#include <support/LogCapture.h>

namespace TestSupport {

using namespace Tessellum::AppData;
using Tessellum::Notification::CreatePoint;
using Tessellum::Notification::DeletePoint;
using Tessellum::Notification::UpdatePoint;
using Tessellum::Notification::UpdateResult;
using Operation = StorageTwin::Operation;
using Fault = StorageTwin::Fault;

/*! One run of both repositories, with storages that are twins. */
class RunningDataRepository
{
public:
    using Provider = Tessellum::AppData::utils::RepositoryProvider;
    using Entry = Data::Entries::Entry;
    using EntryInfo = Data::Entries::EntryInfo;
    using EntryRecord = Data::Entries::EntrySerializeInformation;
    using Element = Data::Elements::Element;
    using Storage = Storages::Storage;
    using CategoryType = Tessellum::AppData::CategoryType;
    using NodePtr = std::shared_ptr<Shared::Hierarchy::HierarchyNode>;

    RunningDataRepository() { provider().setRepositoryActive(false); }
    ~RunningDataRepository()
    {
        provider().endTasks();
        provider().setRepositoryActive(true);
    }

    static Provider &provider() { return *Provider::getInstance(); }
    static Tessellum::Notification::ThreadPool &pool() { return provider().getThreadPool(); }

    /*! Hangs a storage on \a twin, connected, into the tree. */
    std::shared_ptr<Storage> addStorage(const QString &name, const std::shared_ptr<StorageTwin> &twin,
                                        LoadDataHint hint = LoadDataHint::OnDemand)
    {
        twin->connectStorage();
        Storages::StorageCreateDataDetails details;
        details.implementation = twin;
        details.loadDataHint = hint;
        const auto storage = Tessellum::Notification::utils::MakeNode<Storage>(
            Storages::StorageCreateData(name, QStringLiteral("twin"), name, details));
        provider().getRoot()->addChild(storage);
        const auto names = RunningRepository::provider().getListPattern(QStringLiteral("names"),
                                                                        QStringLiteral("storages"));
        names->addElementToList(name, storage->getNodePath()->getFullPath(), false);
        return storage;
    }

    /*! Takes a storage off the tree, as a restart does. */
    void dropStorage(const std::shared_ptr<Storage> &storage)
    {
        for (const auto &child : storage->getChildren(false)) {
            if (const auto entry = std::dynamic_pointer_cast<Entry>(child))
                Data::Entries::utils::UnlinkEntryFromPair(entry);
        }
        storage->setDeleteFlag();
        RunningRepository::provider()
            .getListPattern(QStringLiteral("names"), QStringLiteral("storages"))
            ->removeElementFromList(storage->getName());
    }

    /*! Persistent with the name of a storage, else volatile. */
    static EntryRecord record(const QString &name, const QString &storage = QString(), quint64 capacity = 0,
                              CategoryType category = CategoryType::Float)
    {
        return {name,
                QStringLiteral("plant"),
                {category, QString()},
                storage,
                storage.isEmpty() ? PersistenceType::Volatile : PersistenceType::Persistent,
                capacity};
    }

    static bool create(const NodePtr &parent, const QVariant &data)
    {
        return Tessellum::Notification::utils::WaitForSuccess(
            pool(), pool().startCreateTask(parent, QString(), data, CreatePoint::Done));
    }
    template <class T>
    static bool create(const NodePtr &parent, const T &data)
    {
        return create(parent, QVariant::fromValue(data));
    }
    static bool update(const NodePtr &node, const Data::Elements::ElementUpdateData &data)
    {
        return Tessellum::Notification::utils::WaitForSuccess(
            pool(), pool().startUpdateTask(node, QVariant::fromValue(data), UpdatePoint::Done));
    }
    static bool remove(const NodePtr &node)
    {
        return Tessellum::Notification::utils::WaitForSuccess(
            pool(),
            pool().startDeleteTask(node, node->getNodePath()->getFullPath(), QVariant(), DeletePoint::Done));
    }

    /*! Adds an entry by its task; null where that fails. */
    std::shared_ptr<Entry> addEntry(const EntryRecord &entryRecord, const QString &uuid = QString())
    {
        const auto info = std::make_shared<EntryInfo>();
        info->uuid = uuid;
        info->serialize = entryRecord;
        if (!create(provider().getRoot(), info))
            return nullptr;
        return Data::Entries::utils::EntriesOfPair(
                   Data::Entries::utils::PairPath(entryRecord.classification, entryRecord.name))
            .value(0);
    }

    /*! What the configuration shows of the load status of a node; empty without an attribute. */
    static QString shownStatus(const QString &nodePath)
    {
        return RunningRepository::value("appdata." + nodePath + ".loaded").toString();
    }

    /*! A value with the keys that make an element. */
    static Data::Elements::ElementUpdateData value(quint64 timestamp, double parsed)
    {
        Data::Elements::ElementUpdateData data;
        data.setActive(true);
        data.setTimestamp(timestamp);
        data.setParsedData(parsed);
        return data;
    }

    static std::shared_ptr<Element> element(const std::shared_ptr<Entry> &entry, quint64 index)
    {
        return std::dynamic_pointer_cast<Element>(entry->getChildByIndex(index));
    }
    static double parsed(const std::shared_ptr<Entry> &entry, quint64 index)
    {
        return element(entry, index)->getQueryInterface()->getParsedData()->toDouble();
    }
    /*! The bytes of a double, as a storage keeps them. */
    static QByteArray raw(double number)
    {
        QByteArray bytes;
        QDataStream(&bytes, QIODevice::WriteOnly) << number;
        return bytes;
    }

private:
    RunningRepository configuration;
};

/*! What most tests of the data begin with: a run of both repositories and a storage "disk" on a twin. */
struct DiskFixture
{
    void begin()
    {
        run = std::make_unique<RunningDataRepository>();
        twin = StorageTwin::Make();
        storage = run->addStorage(QStringLiteral("disk"), twin);
    }
    void end()
    {
        twin->release();
        storage.reset();
        run.reset();
        twin.reset();
    }

    std::unique_ptr<RunningDataRepository> run;
    std::shared_ptr<StorageTwin> twin;
    std::shared_ptr<Storages::Storage> storage;
};

} // namespace TestSupport
