#include <appconfig/attributes/Attribute.h>
#include <appconfig/backends/utils/JsonSaver.h>
#include <shared/logging/FrameworkLog.h>

#include <QJsonArray>

using Shared::Hierarchy::HierarchyNode;
using Shared::Logging::FrameworkLog;
using Tessellum::AppConfig::Attributes::Attribute;

namespace Tessellum::AppConfig::Backends::utils {

namespace {

bool IsArrayId(const QString &id)
{
    return id.size() > 1 && id.startsWith(QLatin1Char('<')) && id.endsWith(QLatin1Char('>'));
}

/*! One read only: the function behind an attribute may be costly, or answer differently the second time. */
bool ReadValue(const Attribute *attribute, QVariant &out)
{
    return attribute && attribute->getValue(out, 0) && out.isValid();
}

QJsonObject ToObject(const QMap<QString, QJsonValue> &members)
{
    QJsonObject object;
    for (auto member = members.constBegin(); member != members.constEnd(); ++member)
        object.insert(member.key(), member.value());
    return object;
}

} // namespace

QJsonObject JsonSaver::saveHierarchy(const NodePtr &node, int &count)
{
    tooDeep = false;
    Members members;
    count = saveHierarchyIntoJsonObject(node, members, QString(), 1);
    return ToObject(members);
}

int JsonSaver::saveHierarchyIntoJsonObject(const NodePtr &node, Members &members, const QString &prefix,
                                           int depth)
{
    if (!isDepthAllowed(depth))
        return 0;
    int count = 0;
    for (const NodePtr &child : node->getChildren(false)) {
        const QString id = child->getId();
        const auto *attribute = dynamic_cast<const Attribute *>(child.get());
        QVariant value;
        if (!attribute) {
            count += saveNestedObject(child, members[id], depth + 1);
        } else if (ReadValue(attribute, value)) {
            const QJsonValue json = QJsonValue::fromVariant(value);
            if (json.isNull()) {
                FrameworkLog().warning()
                    << "JsonBackend::saveHierarchyIntoJsonObject() skipping value of type '"
                    << value.typeName() << "' that json cannot hold: '" << prefix << id << "'";
            } else {
                members.insert(prefix + id, json);
                ++count;
            }
            count += saveHierarchyIntoJsonObject(
                child, members, prefix + id + HierarchyNode::GetHierarchyNodePathSeparator(), depth + 1);
        } else if (IsArrayId(id)) {
            count += saveArrayMember(child, id, members, prefix, depth);
        } else {
            count += saveNestedObject(child, members[prefix + id], depth + 1);
        }
    }
    return count;
}

int JsonSaver::saveArrayMember(const NodePtr &node, const QString &id, Members &members,
                               const QString &prefix, int depth)
{
    const QString key = id.mid(1, id.size() - 2);
    if (key.isEmpty()) {
        FrameworkLog().warning()
            << "JsonBackend::saveHierarchyIntoJsonObject() failed to parse array attribute: " << id;
        return 0;
    }
    return saveNestedArray(node, members[prefix + key], depth + 1);
}

int JsonSaver::saveHierarchyIntoJsonArray(const NodePtr &node, QJsonArray &array, int depth)
{
    if (!isDepthAllowed(depth))
        return 0;
    int count = 0;
    for (const NodePtr &child : node->getChildren(false)) {
        const auto *attribute = dynamic_cast<const Attribute *>(child.get());
        QVariant value;
        QJsonValue json;
        if (ReadValue(attribute, value)) {
            // A null keeps the places of those behind it.
            json = QJsonValue::fromVariant(value);
            count += json.isNull() ? 0 : 1;
        } else if (attribute && IsArrayId(child->getId())) {
            count += saveNestedArray(child, json, depth + 1);
        } else {
            count += saveNestedObject(child, json, depth + 1);
        }
        array.append(json);
    }
    return count;
}

int JsonSaver::saveNestedObject(const NodePtr &node, QJsonValue &out, int depth)
{
    Members members;
    const int count = saveHierarchyIntoJsonObject(node, members, QString(), depth);
    out = ToObject(members);
    return count;
}

int JsonSaver::saveNestedArray(const NodePtr &node, QJsonValue &out, int depth)
{
    QJsonArray array;
    const int count = saveHierarchyIntoJsonArray(node, array, depth);
    out = array;
    return count;
}

bool JsonSaver::isDepthAllowed(int depth)
{
    tooDeep = tooDeep || depth > MaximumDepth;
    return !tooDeep;
}

} // namespace Tessellum::AppConfig::Backends::utils
