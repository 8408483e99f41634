#pragma once

#include <appconfig/backends/utils/RemoteMessage.h>
#include <notification/interfaces/NotificationInterface.h>
#include <notification/utils/FrameWorker.h>
#include <shared/synchronization/Shareable.h>

#include <QHash>
#include <QMutex>
#include <QSet>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Tessellum::AppConfig::Attributes {
class Attribute;
}

namespace Tessellum::AppConfig::Backends::utils {

/*!
 * What one peer sees of a subtree of this process: takes its frames, changes and reads the tree, and gives
 * the frames that it is to hear. Knows nothing of sockets.
 *
 * All frames are made on the worker, one after the other, and each holds the value that is in force when it
 * is made. Handlers only note which path has changed and have the worker look there. So the last frame of a
 * path holds its last value, and a burst of changes costs one frame. What the peer was told last is kept, so
 * that no change is told twice.
 *
 * Owned by shared pointers. Threads: receive() on the worker alone; handlers note on any thread. The mutex
 * guards what is noted, and nothing is called under it.
 */
class TESSELLUM_EXPORT RemoteSubtreeSource : public Shared::Synchronization::Shareable<RemoteSubtreeSource>
{
public:
    using Send = std::function<void(const QString &frame)>;
    using ClientNamed = std::function<void(const QString &id)>;

    /*! \a sendFrame and \a named are called on \a frameWorker. */
    RemoteSubtreeSource(const std::shared_ptr<Notification::utils::FrameWorker> &frameWorker,
                        const Send &sendFrame, const ClientNamed &named);
    ~RemoteSubtreeSource() override;
    Q_DISABLE_COPY_MOVE(RemoteSubtreeSource)

    /*! Does what the peer asks in \a frame; what cannot be read or is no business of a peer is dropped. */
    void receive(const QString &frame);

private:
    enum Change { Created = 1, Updated = 2, Deleted = 4 };
    using AttributePtr = std::shared_ptr<const Attributes::Attribute>;
    /*! Of a path whose last value the peer may have heard otherwise: nothing. */
    using Told = std::optional<QByteArray>;

    void initialize(const RemoteMessage &message);
    void registerHandlers();
    void sendSubtree(const QString &path);
    void answerRead(const QString &path);
    void write(const RemoteMessage &message);
    void answer(RemoteCommand command, const QString &path, const QByteArray &bytes);

    void note(const QString &path, Change change);
    void sendChanges();
    void sendChange(const QString &path, int changes);
    void sendMessage(RemoteCommand command, const QString &path, const QByteArray &bytes = QByteArray());

    QString absolutePath(const QString &path) const;
    AttributePtr find(const QString &path) const;

    const std::shared_ptr<Notification::utils::FrameWorker> worker;
    const Send send;
    const ClientNamed clientNamed;

    // On the worker alone.
    QString basePath; // empty before the first "init"
    QHash<QString, Told> told;
    QSet<QString> answered; // that the peer has heard of by an answer alone
    std::vector<Notification::Interfaces::NotificationInterface::HandlePointer> handles;

    QMutex mutex;
    QStringList changedPaths; // in the order in which they changed
    QHash<QString, int> changesOfPath;
    bool isLookUnderWay = false;
};

} // namespace Tessellum::AppConfig::Backends::utils
