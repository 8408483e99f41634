#pragma once

#include <QByteArray>
#include <QHash>
#include <QMutex>
#include <QQueue>
#include <QVariant>
#include <QWaitCondition>

#include <memory>
#include <optional>

namespace Tessellum::AppConfig::Backends::utils {

/*! A value with its serialized bytes, which are null for an invalid one: those tell what is equal. */
struct RemoteValue
{
    QByteArray bytes;
    QVariant value;
};

RemoteValue ToRemoteValue(const QVariant &value);

/*!
 * Sets attributes to values that come one after the other, and nobody waits: the updates of one key follow
 * each other, so that the last value that came is the last one set, and an update that comes back to the
 * attribute's writer can be told from a write of the application's. Made with std::make_shared; lives until
 * all is done.
 *
 * Any thread may call; the values of one key come from one thread at a time. The mutex guards the table, and
 * nothing is called under it.
 */
class RemoteUpdateQueue : public std::enable_shared_from_this<RemoteUpdateQueue>
{
public:
    /*! Sets the attribute at \a path, which all values of \a key share, behind those that came before. */
    void add(const QString &key, const QString &path, const RemoteValue &value);
    /*! Whether the update of \a key that is under way brings \a bytes; true once for each. */
    bool takeEcho(const QString &key, const QByteArray &bytes);
    /*! Waits until at most \a values are not set yet, and little of their bytes. Ends since each task does,
     * at the latest by the stop of the repository, after which none starts. */
    void waitForAtMost(int values);

private:
    struct Updates
    {
        QString path;
        QQueue<RemoteValue> values; // the first one is on its way into the tree
        bool isEchoed = false;
    };
    struct Update
    {
        QString path;
        QVariant value;
    };

    void goOn(const QString &key, std::optional<Update> update, bool mayCreate = true);
    bool start(const QString &key, const Update &update, bool mayCreate);
    std::optional<Update> next(const QString &key);

    QMutex mutex;
    QWaitCondition fewer;
    QHash<QString, Updates> table;
    int pending = 0; // values in the table
    qint64 pendingBytes = 0;
};

} // namespace Tessellum::AppConfig::Backends::utils
