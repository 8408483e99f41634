#pragma once

#include <shared/hierarchy/HierarchyNode.h>

#include <QVariant>

#include <functional>

namespace Shared::SettingsWrapper {

/*!
 * Shows a tree of nodes as settings by section and key.
 *
 * It knows nothing of the kind of the nodes: the reader and the writer that it is given get at their values.
 * A reader or writer that is missing when it is needed throws std::bad_function_call. Threads: any; the tree
 * brings its own locks, none is held while reader or writer run. The root is kept alive.
 */
class TESSELLUM_EXPORT SettingsWrapper : public QObject
{
    Q_OBJECT

public:
    using Node = Hierarchy::HierarchyNode;
    /*! Reads the value of a node, which may be empty. False: there is none. */
    using Reader = std::function<bool(const std::shared_ptr<const Node> &, QVariant &)>;
    /*! Writes a value to a node. False: it could not be written. */
    using Writer = std::function<bool(const std::shared_ptr<Node> &, const QVariant &)>;

    SettingsWrapper(QObject *parent, const std::shared_ptr<Node> &rootNode, const Reader &reader,
                    const Writer &writer);
    ~SettingsWrapper() override;

    std::weak_ptr<Node> getRootNode();
    std::weak_ptr<const Node> getRootNode() const;
    /*! The path of a setting below the root. */
    QString getPathFromSectionAndKey(const QString &section, const QString &key) const;
    /*! Whether there is a node for the setting. */
    bool hasEntry(const QString &section, const QString &key) const;

    /*! The value as T, or \a defaultValue without a root or where the reader fails; a value that does not
     * convert is the zero value of T. Exists for bool, int and QString. */
    template <class T>
    T readSetting(const QString &section, const QString &key, const T &defaultValue) const;

    /*! What the writer says; false without a root or a node for the setting. Exists for bool, int and
     * QString. */
    template <class T>
    bool writeSetting(const QString &section, const QString &key, const T &value);

private:
    bool read(const QString &section, const QString &key, QVariant &value) const;
    bool write(const QString &section, const QString &key, const QVariant &value);

    const std::shared_ptr<Node> root;
    const Reader readNode;
    const Writer writeNode;
};

} // namespace Shared::SettingsWrapper
