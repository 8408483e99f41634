#pragma once

#include <appconfig/backends/utils/RemoteValueCodec.h>

#include <QMap>

namespace Tessellum::AppConfig::Backends::utils {

enum class RemoteCommand : quint32 {
    Unknown = 0,
    Init = 1,
    Read = 2,
    Write = 3,
    Create = 4,
    Update = 5,
    Delete = 6,
    Rewrite = 7
};

/*! What two peers of the configuration tell each other. A value class. */
struct RemoteMessage
{
    RemoteCommand command = RemoteCommand::Unknown;
    QString path;
    QByteArray data; /*!< Serialized; null: left out, which stands for an invalid value. */

    /*! Whether it names a command and a path. */
    bool isValid() const { return command != RemoteCommand::Unknown && !path.isEmpty(); }
};

/*! The message in a text frame; an invalid one if it cannot be read. Damaged data reads as null. */
RemoteMessage ParseRemoteMessage(const QString &frame);

/*! The text frame of \a message; empty for an invalid one. */
QString ComposeRemoteMessage(const RemoteMessage &message);

/*! The serialized values of a subtree by their paths relative to it. */
using RemoteSubtree = QMap<QString, QByteArray>;

/*! The JSON text that carries \a subtree, and back; what is no object reads as an empty subtree. A value that
 * is damaged, or no longer within what all of them may have together, reads as that of an invalid one. */
QString ComposeRemoteSubtree(const RemoteSubtree &subtree);
RemoteSubtree ParseRemoteSubtree(const QString &text);

} // namespace Tessellum::AppConfig::Backends::utils
