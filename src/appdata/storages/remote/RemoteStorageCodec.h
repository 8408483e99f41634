#pragma once

#include <appdata/data/elements/ElementUpdateData.h>
#include <appdata/data/entries/EntrySerializeInformation.h>
#include <appdata/storages/remote/RemoteStorageMessage.h>

#include <QHash>
#include <QList>
#include <QPair>

#include <optional>

namespace Tessellum::AppData::Storages::utils {

/*! An entry with its elements by uuid, in the order of the medium where it was read from one. */
struct RemoteEntry
{
    Data::Entries::EntrySerializeInformation info;
    QList<QPair<QString, Data::Elements::ElementUpdateData>> elements;
};

/*!
 * The payloads of the messages in either mode: what stands in RemoteStorageMessage::data. Reading accepts a
 * text as a QString and as a QByteArray. Nothing and an invalid variant answer what cannot be read or
 * rendered. Any thread may call.
 */
/*! Invalid, and nothing was rendered, for bytes of which a frame in \a mode is too large. */
QVariant EncodeElement(const Data::Elements::ElementUpdateData &values, RemoteStorageMode mode);
/*! Only the keys that are there; nothing for an invalid time stamp. An empty document reads as no key. */
std::optional<Data::Elements::ElementUpdateData> DecodeElement(const QVariant &payload,
                                                               RemoteStorageMode mode);

QVariant EncodeEntryInfo(const Data::Entries::EntrySerializeInformation &info, RemoteStorageMode mode);
std::optional<Data::Entries::EntrySerializeInformation> DecodeEntryInfo(const QVariant &payload,
                                                                        RemoteStorageMode mode);

/*! Documents by the uuids of what they are of. */
using RemoteDocuments = QList<QPair<QString, QString>>;

/*! The string under the element's key in its entry's document; null if it cannot be rendered in \a mode. */
QString EncodeElementDocument(const Data::Elements::ElementUpdateData &values, RemoteStorageMode mode);
/*! The string under the entry's key in the answer to "init"; null if it cannot be rendered in \a mode. */
QString EncodeEntryDocument(const Data::Entries::EntrySerializeInformation &info,
                            const RemoteDocuments &elements, RemoteStorageMode mode);
std::optional<RemoteEntry> DecodeEntryDocument(const QString &document, RemoteStorageMode mode);

/*! More characters of entry documents than this do not fit into an answer, so reading may end there. */
qint64 MostDocuments(RemoteStorageMode mode);
/*! The answer to "init" from the entry documents by their uuids. Invalid if binary JSON cannot hold it (a
 * document that is not empty and renders to nothing, or more than 64 MiB) or the text exceeds 256 MiB. */
QVariant EncodeContents(const RemoteDocuments &documents, RemoteStorageMode mode);
/*! The entry documents by uuid; empty if it cannot be read. */
RemoteDocuments DecodeContents(const QVariant &payload, RemoteStorageMode mode);

/*! The path map of a node, by mode. */
QVariant EncodePathMap(const QHash<QString, QString> &map, RemoteStorageMode mode);
std::optional<QHash<QString, QString>> DecodePathMap(const QVariant &payload, RemoteStorageMode mode);

} // namespace Tessellum::AppData::Storages::utils
