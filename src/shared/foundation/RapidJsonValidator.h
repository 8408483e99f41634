#pragma once

#include <shared/TessellumExport.h>

#include <QByteArray>
#include <QStringList>

namespace Shared::JsonValidation {

/*!
 * Validates JSON texts against JSON Schemas (draft 4) by RapidJSON, and keeps why the last one failed.
 *
 * A schema that cannot be used safely is refused as one that is no JSON: references that lead nowhere or
 * round in circles without descending into the document, and parts that should be schemas and are none. Other
 * keywords of the wrong type are passed over, and so is a pattern that is no regular expression.
 *
 * An object may be used by one thread at a time.
 */
class TESSELLUM_EXPORT RapidJsonValidator
{
public:
    RapidJsonValidator() = default;
    virtual ~RapidJsonValidator() = default;

    /*! False, with the errors to be had from getErrors(), if schema or document are no JSON, or do not fit.
     */
    bool validate(const QByteArray &document, const QByteArray &schema);
    /*! The errors of the last run, empty after a success. */
    QStringList getErrors() const;

private:
    QStringList errors;
};

} // namespace Shared::JsonValidation
