#include <shared/foundation/SettingsWrapper.h>
#include <shared/hierarchy/HierarchyStringPath.h>

using Shared::Hierarchy::HierarchyNode;

namespace Shared::SettingsWrapper {

SettingsWrapper::SettingsWrapper(QObject *parent, const std::shared_ptr<Node> &rootNode, const Reader &reader,
                                 const Writer &writer)
    : QObject(parent)
    , root(rootNode)
    , readNode(reader)
    , writeNode(writer)
{ }

SettingsWrapper::~SettingsWrapper() = default;

std::weak_ptr<HierarchyNode> SettingsWrapper::getRootNode()
{
    return root;
}

std::weak_ptr<const HierarchyNode> SettingsWrapper::getRootNode() const
{
    return root;
}

QString SettingsWrapper::getPathFromSectionAndKey(const QString &section, const QString &key) const
{
    const auto path = root ? root->getNodePath() : nullptr;
    return path ? path->getPathFromPathElements({section, key}) : QString();
}

bool SettingsWrapper::hasEntry(const QString &section, const QString &key) const
{
    const std::shared_ptr<const Node> top = root;
    return top && top->findChildByRelativePath(getPathFromSectionAndKey(section, key));
}

bool SettingsWrapper::read(const QString &section, const QString &key, QVariant &value) const
{
    const std::shared_ptr<const Node> top = root;
    return top && readNode(top->findChildByRelativePath(getPathFromSectionAndKey(section, key)), value);
}

bool SettingsWrapper::write(const QString &section, const QString &key, const QVariant &value)
{
    const auto node = root ? root->findChildByRelativePath(getPathFromSectionAndKey(section, key)) : nullptr;
    return node && writeNode(node, value);
}

template <class T>
T SettingsWrapper::readSetting(const QString &section, const QString &key, const T &defaultValue) const
{
    QVariant value;
    return read(section, key, value) ? value.value<T>() : defaultValue;
}

template <class T>
bool SettingsWrapper::writeSetting(const QString &section, const QString &key, const T &value)
{
    return write(section, key, QVariant::fromValue(value));
}

template TESSELLUM_EXPORT bool SettingsWrapper::readSetting(const QString &, const QString &,
                                                            const bool &) const;
template TESSELLUM_EXPORT int SettingsWrapper::readSetting(const QString &, const QString &,
                                                           const int &) const;
template TESSELLUM_EXPORT QString SettingsWrapper::readSetting(const QString &, const QString &,
                                                               const QString &) const;
template TESSELLUM_EXPORT bool SettingsWrapper::writeSetting(const QString &, const QString &, const bool &);
template TESSELLUM_EXPORT bool SettingsWrapper::writeSetting(const QString &, const QString &, const int &);
template TESSELLUM_EXPORT bool SettingsWrapper::writeSetting(const QString &, const QString &,
                                                             const QString &);

} // namespace Shared::SettingsWrapper
