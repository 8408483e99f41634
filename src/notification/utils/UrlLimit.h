#pragma once

#include <shared/TessellumExport.h>

#include <QtGlobal>

#include <optional>

class QUrl;

namespace Tessellum::Notification::utils {

/*! The query item "limit" of a web socket's \a url, in bytes and at most what a web socket can take;
 * \a preset where it is missing, nothing where it is no positive number. Any thread may call. */
TESSELLUM_EXPORT std::optional<qint64> ReadUrlLimit(const QUrl &url, qint64 preset);

} // namespace Tessellum::Notification::utils
