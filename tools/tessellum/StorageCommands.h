#pragma once

#include <QString>
#include <QTextStream>

namespace Tessellum::Tool {

/*! What is asked of a file of recorded data. */
struct HistoryRequest
{
    QString file;
    QString entry; ///< classification.name, or a pattern; empty for all
    quint64 from = 0; ///< time stamps, both included
    quint64 to = ~0ULL;
    quint64 every = 0; ///< at most one value for each span of so many time stamps; 0 is no limit
    QString plugins; ///< the folder of the storage plug-ins
};

/*!
 * The commands on an SQLite file of recorded data, each with a start and a stop of the library around it.
 * The file is not changed. All throw ToolError.
 */

/*! Without an entry one line for each entry, with one its values, one a line: "stamp value". */
void PrintHistory(const HistoryRequest &request, QTextStream &out);
/*! Every value of every entry, as lines of comma-separated values with a head, or as one JSON array. */
void ExportData(const HistoryRequest &request, bool asJson, QTextStream &out);

/*! The folder of the storage plug-ins that belong to this program: installed, or of the same build. */
QString DefaultPluginFolder();

} // namespace Tessellum::Tool
