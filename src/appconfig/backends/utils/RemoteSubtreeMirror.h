#pragma once

#include <appconfig/attributes/AttributeCreateData.h>
#include <appconfig/backends/utils/RemoteMessage.h>
#include <appconfig/backends/utils/RemoteUpdateQueue.h>
#include <shared/hierarchy/HierarchyNode.h>

#include <QMap>
#include <QMutex>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <memory>

namespace Tessellum::AppConfig::Backends::utils {

/*!
 * The near end of a subtree that another process holds: a cache of its values, without a network. Takes and
 * gives frames; what they tell is done to the attributes beneath a node.
 *
 * A mirror attribute has its value here, so the cache follows the frames and local writes in the order in
 * which they come, whatever the order of the tasks that tell the tree of them. A write that only is the
 * update with a received value goes back as no "write", or two values on their way would chase each other for
 * ever.
 *
 * Threads: receive() as the worker of frames or one thread at a time, and it may wait for tasks; the rest
 * any. Lock: mutex guards cache and callback and keeps the frames in the order of the changes of the cache;
 * nothing is called under it but Send and the queue of updates, whose mutex comes behind it.
 */
class TESSELLUM_EXPORT RemoteSubtreeMirror
{
public:
    using Details = Attributes::AttributeCreateData::AttributeCreateDataDetails;
    using Values = QMap<QString, QVariant>;
    using Callback = std::function<void(const Values &)>;
    /*! Takes a frame for the other end. Called under the mutex: may do no more than pass it on. */
    using Send = std::function<void(const QString &frame)>;
    /*! Makes the details of a mirror attribute from its path and first value. */
    using MakeDetails = std::function<Details(const QString &path, const QVariant &initial)>;

    RemoteSubtreeMirror(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node, Send send,
                        MakeDetails makeMirrorDetails);
    Q_DISABLE_COPY_MOVE(RemoteSubtreeMirror)

    /*! The next "init" answer goes to \a callback and becomes the cache. False while one is awaited. */
    bool requestInitialization(Callback callback);
    /*! Takes the callback back; false if it is being called or was. */
    bool cancelInitialization();
    /*! Ends the wait for an answer: calls the callback without values. */
    void endInitialization();

    /*! The cached value; false, and the other end is asked, if there is none. */
    bool read(const QString &path, QVariant &out);
    /*! Caches and sends \a value, or asks for the value in force where it is no news. Always true. */
    bool write(const QString &path, const QVariant &value);
    /*! Does what \a frame tells; waits for the tasks that it starts where the next frame builds on them. */
    void receive(const QString &frame);

private:
    using Entries = QMap<QString, RemoteValue>;

    Callback takeCallback();
    bool isNews(const QString &path, const QByteArray &bytes);
    QByteArray cachedBytesLocked(const QString &path) const;
    void sendLocked(RemoteCommand command, const QString &path) const;
    QString localPath(const QString &path) const;

    void receiveSubtree(const RemoteMessage &message);
    void compareSubtree(const RemoteSubtree &subtree);
    void receiveValue(const RemoteMessage &message);
    void receiveCreate(const RemoteMessage &message);
    void receiveRewrite(const QString &path);
    void apply(const QString &path, const RemoteValue &value);

    bool answerInitialization(const RemoteSubtree &subtree);
    void deletePaths(const QStringList &paths);
    void createMirrors(const Entries &values);

    const std::weak_ptr<Shared::Hierarchy::HierarchyNode> node;
    const Send send;
    const MakeDetails makeDetails;

    const std::shared_ptr<RemoteUpdateQueue> updates = std::make_shared<RemoteUpdateQueue>();

    QMutex mutex;
    Callback initialization;
    Entries cache;
};

} // namespace Tessellum::AppConfig::Backends::utils
