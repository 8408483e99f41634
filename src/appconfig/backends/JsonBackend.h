#pragma once

#include <appconfig/backends/Backend.h>

namespace Tessellum::AppConfig::Backends {

/*!
 * A JSON file, or the bytes of a document, as attributes.
 *
 * An object is a level of the tree; an array is a level whose node has its key between angle brackets and
 * whose children have the decimal index as their name. Every boolean, number (a double, always) and text is
 * one attribute; a null is none but uses up its index. {"net": {"hosts": ["a"]}} gives "net.<hosts>.0".
 *
 * What does not come back as it was: an array at top level is saved as an object, an object whose key stands
 * between angle brackets becomes an array, a key with a separator in it becomes nested objects, integers
 * beyond 2^53 and values of other types become what QJsonValue makes of them.
 *
 * The whole document is held in memory, read and written in one piece. Any thread may call.
 */
class JsonBackend : public Backend
{
    Q_OBJECT
public:
    using Backend::Backend;

    static QStringList TypeKeys();
    QStringList getTypeKeys() const override;

    /*!
     * Replaces the file as a whole or leaves the old one as it was; what is no regular file is written
     * directly. Without any value beneath the node the file is emptied, and the result is false. A backend
     * that was fed by bytes has nothing to save to: true.
     */
    bool saveAttributes() override;

    /*! A missing file and an empty text are fine; a malformed document and one without a value give false. */
    bool loadAttributesCreateDataInternal(Attributes::AttributesCreateData &out,
                                          const Notification::CreatePoint &waitPoint) override;
};

} // namespace Tessellum::AppConfig::Backends
