#include "FolderBackend.h"

#include <appconfig/interfaces/AttributeInterface.h>

#include <QDir>
#include <QSaveFile>

using Tessellum::AppConfig::Attributes::AttributeCreateData;
using Tessellum::AppConfig::Attributes::AttributesCreateData;
using Tessellum::AppConfig::Interfaces::AttributeInterface;

namespace {

constexpr qint64 largestFile = 1024 * 1024;

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(largestFile).trimmed() : QByteArray();
}

} // namespace

QStringList FolderBackend::TypeKeys()
{
    return {QStringLiteral("folder")};
}

QStringList FolderBackend::getTypeKeys() const
{
    return TypeKeys();
}

bool FolderBackend::loadAttributesCreateDataInternal(AttributesCreateData &out,
                                                     const Tessellum::Notification::CreatePoint &)
{
    const QDir folder(getCreateData().data.toString());
    if (!folder.exists())
        return false;
    for (const QString &name : folder.entryList(QDir::Files, QDir::Name)) {
        AttributeCreateData::AttributeCreateDataDetails details;
        details.value = QString::fromUtf8(readFile(folder.filePath(name)));
        out.append({name, details});
    }
    return true;
}

bool FolderBackend::saveAttributes()
{
    bool saved = true;
    const int prefix = getNodePath()->getFullPath().size() + getNodePath()->getSeparator().size();
    for (const auto &node : getChildren(true)) {
        const auto attribute = std::dynamic_pointer_cast<AttributeInterface>(node);
        QVariant value;
        if (!attribute || !attribute->getValue(value, QMetaType::QString) || !value.isValid())
            continue;
        const QString target = filePath(attribute->getPath().mid(prefix));
        const QByteArray text = value.toString().toUtf8();
        if (QFile::exists(target) && readFile(target) == text)
            continue;
        QSaveFile file(target);
        saved = file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit() && saved;
    }
    return saved;
}

QString FolderBackend::filePath(const QString &name) const
{
    // A value must not get out of its folder.
    return QDir(getCreateData().data.toString())
        .filePath(QString(name).replace(QLatin1Char('/'), QLatin1Char('_')));
}
