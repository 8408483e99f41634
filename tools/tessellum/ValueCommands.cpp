#include "AttributeWait.h"
#include "RunningLibrary.h"
#include "ShellCommand.h"
#include "ValueCommands.h"

namespace Tessellum::Tool {

using Notification::UpdatePoint;
using Notification::UpdateResult;

namespace {

void open(const ValueSource &source)
{
    if (source.isProcess())
        OpenProcess(source);
    else
        OpenFile(source);
}

void setInFile(const ValueSource &source, const QString &path, const QVariant &value)
{
    const RunningLibrary library;
    OpenFile(source, true);
    const UpdateResult result = Configuration()->getManipulationInterface()->updateAttribute(
        LocalPath(path), value, UpdatePoint::Done);
    if (result != UpdateResult::Ok)
        Fail(QStringLiteral("%1 cannot be set").arg(path));
    if (!Configuration()->getBackendInterface()->saveBackend(BackendName()))
        Fail(QStringLiteral("%1 cannot be saved").arg(source.text));
}

/*! A mirror shows what it has written before the process has taken it: a second one, which does not write,
 * shows it afterwards, and the first shows a refusal. */
void setInProcess(const ValueSource &source, const QString &path, const QVariant &value)
{
    const RunningLibrary library;
    const QString local = LocalPath(path);
    const QString witness = QStringLiteral("witness");
    const QString witnessed = witness + QLatin1Char('.') + path;
    OpenProcess(source);
    OpenProcess(source, witness);
    if (!Configuration()->getQueryInterface()->getAttribute(local))
        Fail(QStringLiteral("%1 has no %2").arg(source.text, path));
    AttributeWait wait({local, witnessed});
    if (Configuration()->getManipulationInterface()->updateAttribute(local, value, UpdatePoint::Done)
        != UpdateResult::Ok)
        Fail(QStringLiteral("%1 cannot be set").arg(path));
    // As JSON, since a process may keep a number in another type.
    const auto shows = [json = QJsonValue::fromVariant(value)](const QString &shown) {
        return QJsonValue::fromVariant(AttributeValue(shown)) == json;
    };
    const bool isTold
        = wait.until([&] { return shows(witnessed) || !shows(local); }, QDeadlineTimer(TimeoutOf(source)));
    if (!isTold)
        Fail(QStringLiteral("%1 did not tell whether it took the value").arg(source.text));
    if (!shows(witnessed)) {
        Fail(QStringLiteral("%1 was refused, it is %2").arg(path, JsonText(AttributeValue(local))));
    }
}

} // namespace

void PrintTree(const ValueSource &source, const QString &pattern, QTextStream &out)
{
    const RunningLibrary library;
    open(source);
    const auto found = Configuration()->getQueryInterface()->queryAttributes(LocalPath(pattern));
    if (found.isEmpty())
        Fail(QStringLiteral("nothing in %1 matches %2").arg(source.text, pattern));
    for (const auto &attribute : found) {
        out << SourcePath(attribute->getPath());
        QVariant value;
        if (attribute->hasValue() && attribute->getValue(value, QMetaType::UnknownType))
            out << " = " << JsonText(value);
        out << '\n';
    }
}

void PrintValue(const ValueSource &source, const QString &path, QTextStream &out)
{
    const RunningLibrary library;
    open(source);
    const QVariant value = AttributeValue(LocalPath(path));
    if (!value.isValid())
        Fail(QStringLiteral("%1 has no value at %2").arg(source.text, path));
    out << JsonText(value) << '\n';
}

void SetValue(const ValueSource &source, const QString &path, const QString &json)
{
    const QJsonValue value = ParseJsonValue(json);
    if (value.isUndefined())
        FailUsage(QStringLiteral("%1 is no JSON value; a text needs its quotes").arg(json));
    if (value.isNull())
        FailUsage(QStringLiteral("null cannot be set"));
    if (source.isProcess())
        setInProcess(source, path, value.toVariant());
    else
        setInFile(source, path, value.toVariant());
}

} // namespace Tessellum::Tool
