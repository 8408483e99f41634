#pragma once

#include <shared/logging/LogLevel.h>

#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

namespace Tessellum::Tool {

/*! A storage that a host adds. */
struct HostStorage
{
    QString type;
    QString name;
    QString location;
};

/*! What a host holds and offers. */
struct HostRequest
{
    QString configuration; ///< a JSON file
    QUrl serve; ///< the URL of its configuration server; empty for none
    QList<HostStorage> storages; ///< in the order in which they are added
    QString plugins; ///< the folder of the storage plug-ins
    std::optional<Shared::Logging::LogMessageType> logLevel;
};

/*! Reads the arguments of "host"; fails the command for a wrong usage. */
HostRequest ParseHostRequest(const QStringList &arguments);

/*!
 * Holds the values of a file and the storages, and serves them to other processes, until it is told to end by
 * SIGINT, SIGTERM or "quit". Writes one line with the ports once it serves, then answers the commands of the
 * shell that it reads from standard input, whose end does not end it. Fails the command if something cannot
 * be loaded or served.
 */
void RunHost(const HostRequest &request);

} // namespace Tessellum::Tool
