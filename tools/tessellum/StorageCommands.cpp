#include "RunningLibrary.h"
#include "ShellCommand.h"
#include "StorageCommands.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <functional>

namespace Tessellum::Tool {

using namespace AppData;
using AppData::Interfaces::ConstDataElementList;
using AppData::Interfaces::DataElementQueryInterface;
using AppData::Interfaces::DataEntryInterface;
using AppData::Interfaces::PassThroughFilter;

namespace {

using EntryPtr = std::shared_ptr<DataEntryInterface>;
using Visitor = std::function<void(const DataElementQueryInterface &element)>;

void attachAll(const HistoryRequest &request)
{
    if (!QFileInfo(request.file).isFile())
        Fail(QStringLiteral("%1 does not exist").arg(request.file));
    addPluginSearchPath(request.plugins);
    const auto storages = RecordedData()->getStorageInterface();
    const QString name = QStringLiteral("file");
    Storages::StorageCreateDataDetails details;
    details.location = request.file;
    if (!storages->addStorage(QStringLiteral("sqlite"), name, details, Notification::CreatePoint::Done,
                              QString())) {
        Fail(QStringLiteral("%1 cannot be opened").arg(request.file));
    }
    const auto storage = storages->getStorage(name);
    QHash<QString, Data::Entries::EntrySerializeInformation> stored;
    storage->getQueryInterface()->getEntries(stored);
    for (const QString &uuid : stored.keys()) {
        storage->getManipulationInterface()->loadDataEntry(uuid, LoadDataHint::OnDemand);
        WaitUntilLoaded(RecordedData()->getDataEntryInterface()->getDataEntry(uuid));
    }
}

QString fullName(const DataEntryInterface &entry)
{
    return entry.getClassification() + QLatin1Char('.') + entry.getName();
}

QList<EntryPtr> entriesOf(const HistoryRequest &request)
{
    const QString pattern = request.entry.isEmpty() ? QStringLiteral("*") : request.entry;
    QList<EntryPtr> entries = RecordedData()->getDataEntryInterface()->getDataEntries(pattern);
    if (entries.isEmpty() && !request.entry.isEmpty())
        Fail(QStringLiteral("nothing in %1 matches %2").arg(request.file, request.entry));
    std::sort(entries.begin(), entries.end(),
              [](const EntryPtr &left, const EntryPtr &right) { return fullName(*left) < fullName(*right); });
    return entries;
}

/*! The asked values in the order of their time stamps. */
void visit(const DataEntryInterface &entry, const HistoryRequest &request, const Visitor &visitor)
{
    ConstDataElementList elements = entry.getQueryInterface()->getElementsInRange(
        request.from, request.to, ActivationMask::All, PassThroughFilter());
    std::stable_sort(elements.begin(), elements.end(), [](const auto &left, const auto &right) {
        return left->getQueryInterface()->getTimestamp() < right->getQueryInterface()->getTimestamp();
    });
    quint64 next = 0;
    for (const auto &element : qAsConst(elements)) {
        const auto query = element->getQueryInterface();
        const quint64 timestamp = query->getTimestamp();
        if (timestamp < next)
            continue;
        if (request.every > 0)
            next = timestamp > ~0ULL - request.every ? ~0ULL : timestamp + request.every;
        visitor(*query);
    }
}

QString valueText(const DataElementQueryInterface &element)
{
    return JsonText(*element.getParsedData());
}

QString csvField(const QString &text)
{
    QString quoted = text;
    quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

} // namespace

void PrintHistory(const HistoryRequest &request, QTextStream &out)
{
    const RunningLibrary library;
    attachAll(request);
    for (const EntryPtr &entry : entriesOf(request)) {
        if (!request.entry.isEmpty()) {
            visit(*entry, request, [&](const DataElementQueryInterface &element) {
                out << element.getTimestamp() << ' ' << valueText(element) << '\n';
            });
            continue;
        }
        quint64 first = 0;
        quint64 last = 0;
        const bool any = entry->getQueryInterface()->getTimeSpan(first, last);
        out << fullName(*entry) << ' ' << entry->getQueryInterface()->countElements(ActivationMask::All);
        if (any)
            out << ' ' << first << ' ' << last;
        out << '\n';
    }
}

void ExportData(const HistoryRequest &request, bool asJson, QTextStream &out)
{
    const RunningLibrary library;
    attachAll(request);
    out << (asJson ? "[" : "entry,stamp,active,value\n");
    bool isFirst = true;
    for (const EntryPtr &entry : entriesOf(request)) {
        const QString name = fullName(*entry);
        visit(*entry, request, [&](const DataElementQueryInterface &element) {
            const QString active = element.isActive() ? QStringLiteral("true") : QStringLiteral("false");
            const QString stamp = QString::number(element.getTimestamp());
            const QString value = valueText(element);
            if (asJson) {
                out << (isFirst ? "\n" : ",\n") << "{\"entry\":" << JsonText(name) << ",\"stamp\":" << stamp
                    << ",\"active\":" << active << ",\"value\":" << value << '}';
            } else {
                const bool isText = value.startsWith(QLatin1Char('"'));
                out << csvField(name) << ',' << stamp << ',' << active << ','
                    << (isText ? csvField(element.getParsedData()->toString()) : value) << '\n';
            }
            isFirst = false;
        });
    }
    if (asJson)
        out << (isFirst ? "]\n" : "\n]\n");
}

QString DefaultPluginFolder()
{
    const QDir here(QCoreApplication::applicationDirPath());
    const QString installed = here.filePath(QStringLiteral(TESSELLUM_PLUGINS_FROM_TOOL));
    return QDir(installed).exists() ? installed : here.filePath(QStringLiteral("../../plugins"));
}

} // namespace Tessellum::Tool
