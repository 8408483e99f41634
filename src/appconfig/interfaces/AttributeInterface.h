#pragma once

#include <shared/localization/CoreLocalizationInterface.h>
#include <shared/TessellumExport.h>

#include <QString>
#include <QVariant>

#include <memory>

namespace Tessellum::AppConfig::Interfaces {

/*!
 * The reading side of one configuration value.
 *
 * Threads: any. Each call takes the lock of the value's node for its own length.
 * Errors: a denied or failed read is a false; nothing is logged and nothing throws.
 */
class TESSELLUM_EXPORT AttributeInterface
{
public:
    /*! Whether the attribute is on its way out, or gone. It may still be readable. */
    virtual bool isDeleteFlagSet() const = 0;
    /*! Whether some thread holds the node's lock at this moment. */
    virtual bool isLocked() const = 0;
    /*! Whether a read succeeds and gives a valid value. */
    virtual bool hasValue() const = 0;
    /*! Reads into \a out and converts to \a metaType; 0 leaves the value as it is stored. */
    virtual bool getValue(QVariant &out, const int &metaType) const = 0;
    /*! As getValue(); a text is read as a number under the locales of \a localization (may be empty). */
    virtual bool getLocalizedValue(QVariant &out,
                                   const std::shared_ptr<Core::CoreLocalizationInterface> &localization,
                                   const int &metaType) const = 0;
    /*! The node's own name. */
    virtual QString getId() const = 0;
    /*! The full path of the node. */
    virtual QString getPath() const = 0;
    /*! The bits of AttributeAccess that the attribute grants. */
    virtual quint32 getAccess() const = 0;
    virtual ~AttributeInterface() = default;
};

} // namespace Tessellum::AppConfig::Interfaces
