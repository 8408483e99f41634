#pragma once

#include <QJsonDocument>
#include <QString>

namespace Shared::Conversion {

/*!
 * What QJsonDocument::fromJson() reads, for text from a foreign peer: Qt's parser leaks the former value of a
 * key that stands twice. Here the last one counts, too. False, with \a document unchanged, for no document.
 * Any thread may call.
 */
bool ReadJsonText(const QString &text, QJsonDocument &document);

} // namespace Shared::Conversion
