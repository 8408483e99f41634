#pragma once

#include <QString>
#include <QVariant>

namespace Tessellum::AppConfig::Backends::utils {

/*!
 * Reader and writer of a mirror attribute, whose \a stored value is a RemoteBackendClientPtr; false and a
 * line for any other. They run under the lock of the attribute's node, and do not wait.
 */

/*! The value that the client knows for \a path; \a initial, and the server is asked, while it knows none. */
bool ReadProperty(const QString &path, const QVariant &initial, const QVariant &stored, QVariant &out);

/*! Hands \a in to the client. */
bool WriteProperty(const QString &path, QVariant &stored, const QVariant &in);

} // namespace Tessellum::AppConfig::Backends::utils
