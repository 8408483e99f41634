#include <appconfig/backends/JsonBackend.h>
#include <appconfig/backends/utils/JsonLoader.h>
#include <appconfig/backends/utils/JsonSaver.h>
#include <shared/logging/FrameworkLog.h>

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

using Shared::Logging::FrameworkLog;

namespace Tessellum::AppConfig::Backends {

namespace {

constexpr QIODevice::OpenMode WriteMode = QIODevice::WriteOnly | QIODevice::Text;

/*! A device may give bytes for ever. */
constexpr int LargestDeviceText = 256 * 1024 * 1024;

QByteArray ReadAll(QFile &file)
{
    if (QFileInfo(file).isFile())
        return file.readAll();
    QByteArray text;
    while (text.size() < LargestDeviceText) {
        const QByteArray part = file.read(qint64(1024) * 1024);
        if (part.isEmpty())
            break;
        text += part;
    }
    return text;
}

enum class Source { Usable, Absent, Unusable };

Source ReadText(const QVariant &data, QByteArray &text)
{
    if (data.type() == QVariant::ByteArray) {
        text = data.toByteArray();
        return Source::Usable;
    }
    if (data.canConvert(QVariant::String)) {
        QFile file(data.toString());
        if (file.exists() && file.open(QIODevice::ReadOnly)) {
            text = ReadAll(file);
            return Source::Usable;
        }
        FrameworkLog().log() << "JsonBackend::loadAttributesCreateDataInternal() json file '"
                             << file.fileName() << "' does not exist, nothing loaded";
        return Source::Absent;
    }
    if (data.canConvert(QVariant::ByteArray)) {
        text = data.toByteArray();
        return Source::Usable;
    }
    FrameworkLog().warning() << "JsonBackend::loadAttributesCreateDataInternal() provided backend create data"
                                " not provided as file name (QString) or json data (QByteArray),"
                                " received type="
                             << data.typeName();
    return Source::Unusable;
}

bool OpenFile(QFileDevice &file)
{
    if (file.open(WriteMode))
        return true;
    FrameworkLog().warning() << "JsonBackend::saveAttributes() json file '" << file.fileName()
                             << "' cannot be opened for writing, nothing saved";
    return false;
}

bool WriteText(QFileDevice &file, const QByteArray &text)
{
    if (file.write(text) == text.size() && file.flush())
        return true;
    FrameworkLog().warning() << "JsonBackend::saveAttributes() json file '" << file.fileName()
                             << "' cannot be written: " << file.errorString();
    return false;
}

bool WriteDirectly(const QString &name, const QByteArray &text)
{
    QFile file(name);
    return OpenFile(file) && WriteText(file, text);
}

/*! A full disk or the end of the process on the way leaves the old file whole. */
bool ReplaceFile(const QString &name, const QByteArray &text)
{
    QSaveFile file(name);
    file.setDirectWriteFallback(true);
    if (!OpenFile(file))
        return false;
    const bool written = WriteText(file, text);
    if (!written)
        file.cancelWriting();
    // Also after a failure: without it, a file that had to be written directly would be removed.
    const bool committed = file.commit();
    if (written && !committed) {
        FrameworkLog().warning() << "JsonBackend::saveAttributes() json file '" << name
                                 << "' cannot be replaced: " << file.errorString();
    }
    return written && committed;
}

bool WriteFile(const QString &name, const QByteArray &text)
{
    const QFileInfo present(name);
    return present.exists() && !present.isFile() ? WriteDirectly(name, text) : ReplaceFile(name, text);
}

} // namespace

QStringList JsonBackend::TypeKeys()
{
    return {QStringLiteral("json"), QStringLiteral("json_file"), QStringLiteral("jsonfile")};
}

QStringList JsonBackend::getTypeKeys() const
{
    return TypeKeys();
}

bool JsonBackend::loadAttributesCreateDataInternal(Attributes::AttributesCreateData &out,
                                                   const Notification::CreatePoint &)
{
    const QVariant data = getCreateData().data;
    QByteArray text;
    const Source source = ReadText(data, text);
    if (source != Source::Usable)
        return source == Source::Absent;
    if (text.isEmpty()) {
        FrameworkLog().log()
            << "JsonBackend::loadAttributesCreateDataInternal() json data is empty, nothing loaded";
        return true;
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        FrameworkLog().warning()
            << "JsonBackend::loadAttributesCreateDataInternal() json file parsing failed with error: "
            << error.errorString() << " at offset: " << error.offset << " create data=" << data.toString();
        return false;
    }
    return utils::JsonLoader(getNodePath()->getSeparator(), out).loadDocument(document) != 0;
}

bool JsonBackend::saveAttributes()
{
    const QVariant data = getCreateData().data;
    if (data.type() == QVariant::ByteArray)
        return true;
    const QString name = data.toString();
    // The tree is walked before the file is touched, so that what fails there costs no file.
    utils::JsonSaver saver;
    int count = 0;
    const QJsonObject object = saver.saveHierarchy(self(), count);
    if (saver.isTooDeep()) {
        FrameworkLog().warning() << "JsonBackend::saveAttributes() the tree beneath '"
                                 << getNodePath()->getFullPath() << "' has more than "
                                 << utils::JsonSaver::MaximumDepth << " levels, nothing saved to json file '"
                                 << name << "'";
        return false;
    }
    if (count == 0) {
        WriteFile(name, QByteArray());
        return false;
    }
    return WriteFile(name, QJsonDocument(object).toJson());
}

} // namespace Tessellum::AppConfig::Backends
