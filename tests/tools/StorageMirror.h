#pragma once

#include "ToolRunner.h"

namespace ToolSupport {

inline QByteArray numbered(const char *text, int number)
{
    return QByteArray(text).replace('#', QByteArray::number(number));
}

/*! A client of storages, with a copy of each in one of its own of the same name. */
struct StorageMirror : ShellProcess
{
    StorageMirror() { succeeds("start"); }
    bool add(const QByteArray &storage, int port, const QByteArray &id)
    {
        return succeeds("storage remote-storage-client " + storage
                        + " ws://127.0.0.1:" + QByteArray::number(port) + "?path=" + storage + "&id=" + id);
    }
};

/*! The values of a storage as "export" writes them, sorted. */
inline QStringList contents(ShellProcess &shell, const char *storage)
{
    QStringList lines;
    for (const QJsonValue &entry : shell.ask("entries").value("entries").toArray()) {
        if (entry["storage"] != QLatin1String(storage))
            continue;
        const QByteArray ask = "elements " + entry["uuid"].toString().toUtf8();
        for (const QJsonValue &element : shell.ask(ask).value("elements").toArray())
            lines.append(QString("\"plant.%1\",%2,%3,%4")
                             .arg(entry["name"].toString(), element["stamp"].toString(),
                                  element["active"].toVariant().toString(),
                                  element["value"].toVariant().toString()));
    }
    lines.sort();
    return lines;
}

} // namespace ToolSupport
