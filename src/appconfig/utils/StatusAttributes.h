#pragma once

#include <shared/TessellumExport.h>

#include <QString>
#include <QVariant>

#include <memory>

namespace Tessellum::AppConfig::utils {

/*!
 * Shows what becomes of one peer in the configuration, beneath one root, and never waits.
 *
 * One task of a root is on its way at a time, for all objects of that root together, and its end starts the
 * next: so an attribute ends at the value that was set last. The last object of a root takes away what was
 * made. Any thread may call; no lock may be held. Lock: one for all roots, guards what is on its way; nothing
 * is called under it.
 */
class TESSELLUM_EXPORT StatusAttributes
{
public:
    /*! \a rootPath is the path of an attribute. */
    explicit StatusAttributes(const QString &rootPath);
    ~StatusAttributes();
    Q_DISABLE_COPY_MOVE(StatusAttributes)

    /*! Sets the attribute \a child of the root, or with an empty \a child the root itself, which is made
     * where it is missing. Does nothing while the configuration is stopped. */
    void set(const QString &child, const QVariant &value);
    /*! Makes the attribute, and leaves one that is there as it is. */
    void provide(const QString &child, const QVariant &value);
    /*! Whether the attribute is there now. */
    bool isThere(const QString &child) const;
    QString pathOf(const QString &child) const;

private:
    struct State;

    const std::shared_ptr<State> state;
};

} // namespace Tessellum::AppConfig::utils
