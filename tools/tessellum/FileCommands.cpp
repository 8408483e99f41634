#include "FileCommands.h"
#include "RunningLibrary.h"
#include "ShellCommand.h"

#include <QFileInfo>

namespace Tessellum::Tool {

using Notification::CreatePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;

namespace {

const QString backendName = QStringLiteral("file");

QString inBackend(const QString &path)
{
    return backendName + QLatin1Char('.') + path;
}

void load(const QString &file)
{
    AppConfig::Backends::BackendCreateDataDetails details;
    details.data = file;
    if (!Configuration()->getBackendInterface()->createBackend(QStringLiteral("json"), backendName, details,
                                                               CreatePoint::Done)) {
        Fail(QStringLiteral("%1 cannot be loaded").arg(file));
    }
}

void loadExisting(const QString &file)
{
    if (!QFileInfo::exists(file))
        Fail(QStringLiteral("%1 does not exist").arg(file));
    load(file);
}

} // namespace

void PrintTree(const QString &file, const QString &pattern, QTextStream &out)
{
    const RunningLibrary library;
    loadExisting(file);
    const auto found = Configuration()->getQueryInterface()->queryAttributes(inBackend(pattern));
    if (found.isEmpty())
        Fail(QStringLiteral("nothing in %1 matches %2").arg(file, pattern));
    for (const auto &attribute : found) {
        out << attribute->getPath().mid(backendName.size() + 1);
        QVariant value;
        if (attribute->hasValue() && attribute->getValue(value, QMetaType::UnknownType))
            out << " = " << JsonText(QJsonValue::fromVariant(value));
        out << '\n';
    }
}

void PrintValue(const QString &file, const QString &path, QTextStream &out)
{
    const RunningLibrary library;
    loadExisting(file);
    QVariant value;
    if (!Configuration()->getQueryInterface()->getValue(inBackend(path), value, QMetaType::UnknownType))
        Fail(QStringLiteral("%1 has no value at %2").arg(file, path));
    out << JsonText(QJsonValue::fromVariant(value)) << '\n';
}

void SetValue(const QString &file, const QString &path, const QString &json)
{
    const QJsonValue value = ParseJsonValue(json);
    if (value.isUndefined())
        FailUsage(QStringLiteral("%1 is no JSON value; a text needs its quotes").arg(json));
    if (value.isNull())
        FailUsage(QStringLiteral("null cannot be saved"));
    const RunningLibrary library;
    load(file);
    const UpdateResult result = Configuration()->getManipulationInterface()->updateAttribute(
        inBackend(path), value.toVariant(), UpdatePoint::Done);
    if (result != UpdateResult::Ok)
        Fail(QStringLiteral("%1 cannot be set").arg(path));
    if (!Configuration()->getBackendInterface()->saveBackend(backendName))
        Fail(QStringLiteral("%1 cannot be saved").arg(file));
}

} // namespace Tessellum::Tool
