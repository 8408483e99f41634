#pragma once

#include <QString>

namespace Tessellum::Tool {

/*! Fetches \a url into \a file, which is written whole or not at all; on a terminal a bar shows how far it
 * has come. Throws ToolError. */
void DownloadFile(const QString &url, const QString &file);

} // namespace Tessellum::Tool
