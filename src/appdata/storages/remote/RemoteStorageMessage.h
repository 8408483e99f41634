#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

namespace Tessellum::AppData::Storages::utils {

/*! The numbers by which both ends tell the commands apart. */
enum class RemoteStorageCommand : quint32 {
    Unknown = 0,
    Init = 1,
    CreateElement = 2,
    UpdateElement = 3,
    CreateEntry = 4,
    DeleteEntry = 5,
    PathMap = 6 /*!< Has no word, so it is never sent. */
};

/*! How the frames of a connection are written. */
enum class RemoteStorageMode : quint32 { Text = 0, Binary = 1 };

/*! The one option that peers tell each other. */
inline constexpr QLatin1String SupportsBinaryData("supportsBinaryData", sizeof "supportsBinaryData" - 1);

/*! What two peers of a storage tell each other. A value class. */
struct RemoteStorageMessage
{
    QString command;
    QString path;
    QVariant data; /*!< A QString or a QByteArray; invalid: left out. */
    QVariantHash options;

    bool isValid() const { return !command.isEmpty(); }
};

/*! Unknown for a word that is not in the table. */
RemoteStorageCommand CommandOfWord(const QString &word);
/*! Empty for a command without a word. */
QString WordOfCommand(RemoteStorageCommand command);

/*! A value as it stands in "data": text mode adds the envelope of qCompress(). Reading gives a QString or a
 * QByteArray; invalid for anything else and for what is damaged. */
QString EncodeRemoteVariant(const QVariant &value, RemoteStorageMode mode);
QVariant DecodeRemoteVariant(const QString &text, RemoteStorageMode mode);

/*! What is in the envelope of qCompress(); null if it is damaged, or announces more than 64 MiB and more than
 * it is long itself. */
QByteArray UncompressStored(const QByteArray &compressed);

/*! The message in a frame; an invalid one if it cannot be read. Any thread may call. */
RemoteStorageMessage ParseRemoteStorageText(const QString &frame);
RemoteStorageMessage ParseRemoteStorageBinary(const QByteArray &frame);

/*! The frame of \a message; empty for an invalid one, or if it cannot be rendered. */
QString ComposeRemoteStorageText(const RemoteStorageMessage &message);
QByteArray ComposeRemoteStorageBinary(const RemoteStorageMessage &message);

} // namespace Tessellum::AppData::Storages::utils
