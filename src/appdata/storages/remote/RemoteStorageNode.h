#pragma once

#include <appdata/storages/remote/RemoteStorageCodec.h>
#include <appdata/storages/remote/RemoteStorageMessage.h>
#include <notification/utils/FrameWorker.h>

#include <QHash>
#include <QMutex>
#include <QObject>
#include <QStringList>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>

namespace Tessellum::AppData::Storages::utils {

/*!
 * What both ends of a remote storage have in common: the entries as the storage's reads answer them, by local
 * uuids, and the map from the peer's uuids to the local ones.
 *
 * Threads: any, for all members but the slots of the classes that derive. Made by MakeEventThreadObject(), so
 * that it dies on the event thread. The mutex guards map and cache; nothing is called while it is held.
 */
class RemoteStorageNode : public QObject
{
    Q_OBJECT

public:
    using EntryRecord = Data::Entries::EntrySerializeInformation;
    using ElementValues = Data::Elements::ElementUpdateData;

    /*! An entry of the cache. */
    struct CachedEntry
    {
        EntryRecord info;
        QStringList order; /*!< The elements' uuids as they came. */
        QHash<QString, ElementValues> elements;
    };

    RemoteStorageNode(const QString &nodeId, const QUrl &nodeUrl);
    ~RemoteStorageNode() override;

    /*! Starts the work on the event thread and does not wait for it. */
    virtual bool initialize() = 0;
    /*! Whether the server listens, or the client has its status attribute. */
    virtual bool isRunning() const = 0;
    /*! Enters an entry that the storage has got, or replaces its record. */
    virtual bool createEntry(const QString &storageName, const QString &path, const EntryRecord &info) = 0;
    /*! False for an unknown entry. */
    virtual bool createElement(const QString &path, const QString &name, const ElementValues &values) = 0;
    /*! Changes the keys that are there; false for an unknown element. */
    virtual bool updateElement(const QString &path, const QString &name, const ElementValues &values) = 0;
    /*! False for an unknown entry. */
    virtual bool removeEntry(const QString &path) = 0;

    QString getId() const { return id; }
    QUrl getUrl() const { return location; }

    /*! The elements of an entry that is there stay. */
    void storeEntry(const QString &path, const EntryRecord &info);
    /*! False, with \a info unchanged, for an unknown entry. */
    bool readEntry(const QString &path, EntryRecord &info) const;
    /*! Replaces the element's values; it keeps its place. False for an unknown entry. */
    bool storeElement(const QString &path, const QString &name, const ElementValues &values);
    /*! Replaces the keys that are there; false for an unknown element. */
    bool changeElement(const QString &path, const QString &name, const ElementValues &values);
    /*! Nothing for an unknown element. */
    std::optional<ElementValues> readElement(const QString &path, const QString &name) const;
    QHash<QString, ElementValues> readElements(const QString &path) const;
    /*! The uuids of the elements, in the order in which they came. */
    QStringList readElementNames(const QString &path) const;
    QHash<QString, EntryRecord> readEntries() const;
    /*! Whether there was one. */
    bool dropEntry(const QString &path);
    /*! Forgets the entries and keeps the map. */
    void clearEntries();

    /*! The local uuid of the peer's; empty where there is no mapping. */
    QString mapPath(const QString &remote) const;
    void setMapping(const QString &remote, const QString &local);
    QHash<QString, QString> getMap() const;
    void replaceMap(const QHash<QString, QString> &newMap);
    void removeMapping(const QString &remote);
    /*! Forgets the entries and the map. */
    void clear();

    /*! The frame of a message; empty for a command without a word, and if it cannot be rendered. */
    static QString ComposeText(const QString &path, RemoteStorageCommand command, const QVariant &data,
                               const QVariantHash &options);
    static QByteArray ComposeBinary(const QString &path, RemoteStorageCommand command, const QVariant &data,
                                    const QVariantHash &options);
    /*! The uuids joined as the paths of messages are; SplitPath() takes them apart. */
    static QString JoinPath(const QString &first, const QString &second);
    static QStringList SplitPath(const QString &path);
    /*! Whether \a id can stand as one element of a path. */
    static bool IsPathElement(const QString &id);

protected:
    /*! An item of the URL's query, decoded; empty where it is missing. */
    QString getQueryItem(const QString &key) const;
    /*! The item "limit" of the query in bytes; \a preset where it is missing or no positive number. */
    qint64 getLimit(qint64 preset) const;
    /*! Whether the tree has the storage that this is the end of, or it was looked for long enough. False
     * while the task that connects it has not come so far, where a peer could come first and find nothing; \a
     * again is called a little later then. For the event thread alone. */
    bool isStorageEntered(const QString &storageName, const std::function<void()> &again);
    /*! Does what frames ask for; another one in each run of the repository, null while that is stopped. For
     * the event thread alone. */
    std::shared_ptr<Notification::utils::FrameWorker> getWorker();

private:
    const QString id;
    mutable QMutex mutex;
    QHash<QString, QString> map;
    QHash<QString, CachedEntry> entries;
    const QUrl location;
    int looksForStorage = 0;
    std::shared_ptr<Notification::utils::FrameWorker> worker;
};

} // namespace Tessellum::AppData::Storages::utils
