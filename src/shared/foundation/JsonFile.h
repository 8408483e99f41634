#pragma once

#include <shared/TessellumExport.h>

#include <QFileInfo>
#include <QJsonDocument>
#include <QVariant>

namespace Shared {

/*!
 * Reads a JSON file, whole, as text or in Qt's binary form. A null document for a file that cannot be read or
 * is neither, as log lines tell. \a error, if not null, gets what the text parser found, also where the
 * binary form was accepted then. Any thread.
 */
TESSELLUM_EXPORT QJsonDocument LoadJsonFromFile(const QFileInfo &file, QJsonParseError *error);

/*!
 * A text or bytes are parsed as JSON; a document, an object, an array, a list or a map becomes the document
 * of that content. A null document, with \a error (if not null) telling why, for any other value. Any thread.
 */
TESSELLUM_EXPORT QJsonDocument ConvertVariantToJsonDocument(const QVariant &value, QJsonParseError *error);

namespace JsonValidation {

/*!
 * Whether \a document keeps to the JSON Schema (draft 4) \a schema; tells in a warning why not. Any thread.
 */
TESSELLUM_EXPORT bool ValidateJsonAgainstSchema(const QJsonDocument &document, const QJsonDocument &schema);

} // namespace JsonValidation

} // namespace Shared
