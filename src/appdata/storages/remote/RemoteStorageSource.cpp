#include <appdata/storages/remote/RemoteStorageSource.h>
#include <appdata/storages/Storage.h>
#include <appdata/storages/StorageImplementation.h>
#include <appdata/storages/utils/CallMedium.h>
#include <appdata/utils/RepositoryLookup.h>
#include <appdata/utils/RepositoryProvider.h>
#include <shared/logging/FrameworkLog.h>

namespace Tessellum::AppData::Storages::utils {

using AppData::utils::RepositoryProvider;
using Shared::Logging::FrameworkLog;

namespace {

using EntryRecord = RemoteStorageNode::EntryRecord;
using ElementValues = RemoteStorageNode::ElementValues;

constexpr const char *caller = "RemoteStorageSource::MakeAnswer()";

/*! The stop of the repository waits for what runs here. */
bool IsStopping()
{
    return !RepositoryProvider::getInstance()->getThreadPool().isRunning();
}

/*! The document of an entry, one element read after the other; null where \a mode cannot hold it, or as soon
 * as it exceeds \a room characters. */
QString ReadEntry(const StorageImplementation &medium, const QString &uuid, const EntryRecord &record,
                  RemoteStorageMode mode, qint64 room)
{
    QStringList uuids;
    CallMedium(caller, quint64(0), [&] { return medium.getElementIds(uuid, uuids); });
    RemoteDocuments elements;
    for (const QString &element : qAsConst(uuids)) {
        ElementValues values;
        // With the bytes, and of the medium alone: the element stays unloaded in the tree.
        if (!CallMedium(caller, false, [&] {
                return medium.deserializeElement(uuid, element, values, LoadDataHint::LoadAtOnce);
            })) {
            continue;
        }
        const QString document = EncodeElementDocument(values, mode);
        room -= element.size() + document.size();
        if (document.isNull() || room < 0 || IsStopping())
            return {};
        elements.append({element, document});
    }
    return EncodeEntryDocument(record, elements, mode);
}

/*! Nothing where \a mode cannot hold the contents. */
QVariant ReadContents(const StorageImplementation &medium, RemoteStorageMode mode)
{
    QHash<QString, EntryRecord> records;
    CallMedium(caller, quint64(0), [&] { return medium.getEntries(records); });
    qint64 room = MostDocuments(mode);
    RemoteDocuments documents;
    for (auto record = records.cbegin(); record != records.cend(); ++record) {
        const QString document = ReadEntry(medium, record.key(), *record, mode, room);
        room -= document.size();
        if (document.isNull() || room < 0 || IsStopping())
            return {};
        documents.append({record.key(), document});
    }
    return EncodeContents(documents, mode);
}

/*! Empty where \a mode cannot hold the contents. */
template <class Compose>
auto Render(const StorageImplementation &medium, const QString &path, RemoteStorageMode mode, Compose compose)
{
    const QVariant contents = ReadContents(medium, mode);
    const QVariantHash options{{QString(SupportsBinaryData), mode == RemoteStorageMode::Binary}};
    using Frame = decltype(compose(path, RemoteStorageCommand::Init, contents, options));
    return contents.isValid() ? compose(path, RemoteStorageCommand::Init, contents, options) : Frame();
}

} // namespace

RemoteStorageFrame RemoteStoragePush::frameFor(bool isBinary) const
{
    if (isBinary && !binary.isEmpty())
        return binary;
    return text;
}

std::optional<RemoteStorageAnswer> RemoteStorageSource::MakeAnswer(const RemoteStorageMessage &request,
                                                                   bool isBinary)
{
    const auto storage = AppData::utils::FindStorage(request.path);
    if (!storage)
        return std::nullopt;
    RemoteStorageAnswer answer;
    answer.storage = storage;
    answer.isBinary = request.options.value(QString(SupportsBinaryData), isBinary).toBool();
    const auto medium = storage->getImplementation();
    if (answer.isBinary) {
        const QByteArray frame
            = Render(*medium, request.path, RemoteStorageMode::Binary, RemoteStorageNode::ComposeBinary);
        answer.frame = frame;
        if (!frame.isEmpty() || IsStopping())
            return answer;
        FrameworkLog().warning() << caller << " binary JSON cannot hold the storage " << request.path
                                 << ", it is sent as text";
        answer.isBinary = false;
    }
    const QString frame
        = Render(*medium, request.path, RemoteStorageMode::Text, RemoteStorageNode::ComposeText);
    answer.frame = frame;
    if (frame.isEmpty() && !IsStopping())
        FrameworkLog().warning() << caller << " the storage " << request.path << " is too large to be sent";
    return answer;
}

RemoteStoragePush RemoteStorageSource::MakePush(RemoteStorageCommand command, const QString &path,
                                                const Payload &payload, bool needsText, bool needsBinary)
{
    const auto compose = [&](RemoteStorageMode mode, auto composer) {
        const QVariant data = payload ? payload(mode) : QVariant();
        using Frame = decltype(composer(path, command, data, QVariantHash()));
        return payload && !data.isValid() ? Frame() : composer(path, command, data, QVariantHash());
    };
    RemoteStoragePush push;
    if (needsBinary)
        push.binary = compose(RemoteStorageMode::Binary, RemoteStorageNode::ComposeBinary);
    if (needsText || push.binary.isEmpty()) {
        push.text = compose(RemoteStorageMode::Text, RemoteStorageNode::ComposeText);
        if (push.text.isEmpty() && !WordOfCommand(command).isEmpty())
            FrameworkLog().warning() << "RemoteStorageSource::MakePush() the change of " << path
                                     << " is too large to be sent";
    }
    return push;
}

} // namespace Tessellum::AppData::Storages::utils
