#include <appconfig/backends/utils/JsonLoader.h>
#include <shared/logging/FrameworkLog.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QStringBuilder>

using Shared::Logging::FrameworkLog;
using Tessellum::AppConfig::Attributes::AttributeAccess;
using Tessellum::AppConfig::Attributes::AttributeCreateData;
using Tessellum::AppConfig::Attributes::AttributesCreateData;

namespace Tessellum::AppConfig::Backends::utils {

JsonLoader::JsonLoader(const QString &pathSeparator, AttributesCreateData &target)
    : separator(pathSeparator)
    , attributes(target)
{ }

int JsonLoader::loadDocument(const QJsonDocument &document)
{
    if (document.isObject())
        return loadJsonObject(QString(), document.object());
    if (document.isArray())
        return loadJsonArray(QString(), document.array());
    return 0;
}

int JsonLoader::loadJsonObject(const QString &path, const QJsonObject &object)
{
    int count = 0;
    for (auto member = object.constBegin(); member != object.constEnd(); ++member)
        count += loadJsonValue(elementPath(path, member.key()), member.value());
    return count;
}

int JsonLoader::loadJsonArray(const QString &path, const QJsonArray &array)
{
    int count = 0;
    for (int index = 0; index < array.size(); ++index)
        count += loadJsonValue(elementPath(path, QString::number(index)), array.at(index));
    return count;
}

int JsonLoader::loadJsonValue(const QString &path, const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Null:
        FrameworkLog().warning() << "JsonBackend::loadJsonValue() skipping null value";
        return 0;
    case QJsonValue::Bool:
    case QJsonValue::String:
        return addAttribute(path, value.toVariant());
    case QJsonValue::Double:
        // toVariant() would make an integer of what looks like one.
        return addAttribute(path, value.toDouble());
    case QJsonValue::Array:
        return loadJsonArray(arrayPath(path), value.toArray());
    case QJsonValue::Object:
        return loadJsonObject(path, value.toObject());
    case QJsonValue::Undefined:
        break;
    }
    FrameworkLog().warning() << "JsonBackend::loadJsonValue() unknown QJsonValue::Type: "
                             << static_cast<int>(value.type());
    return 0;
}

int JsonLoader::addAttribute(const QString &path, const QVariant &value)
{
    if (!isUsablePath(path))
        return 0;
    attributes.append(AttributeCreateData());
    AttributeCreateData &attribute = attributes.last();
    attribute.name = path;
    attribute.details.value = value;
    attribute.details.access = AttributeAccess::Read | AttributeAccess::Write;
    return 1;
}

QString JsonLoader::elementPath(const QString &path, const QString &element) const
{
    if (path.isEmpty())
        return element;
    return path % separator % element;
}

QString JsonLoader::arrayPath(const QString &path) const
{
    const int last = path.lastIndexOf(separator);
    const int begin = last < 0 ? 0 : last + separator.size();
    return path.leftRef(begin) % QLatin1Char('<') % path.midRef(begin) % QLatin1Char('>');
}

bool JsonLoader::isUsablePath(const QString &path) const
{
    int elements = 0;
    int begin = 0;
    do {
        const int end = path.indexOf(separator, begin);
        // No node can have an empty name, so such a value must not count as loaded.
        if (end == begin || begin == path.size()) {
            FrameworkLog().warning() << "JsonBackend::loadJsonValue() skipping value with an empty path "
                                        "element: '"
                                     << path << "'";
            return false;
        }
        ++elements;
        begin = end < 0 ? 0 : end + separator.size();
    } while (begin > 0);
    if (elements <= MaximumDepth)
        return true;
    FrameworkLog().warning() << "JsonBackend::loadJsonValue() skipping value with more than " << MaximumDepth
                             << " path elements";
    return false;
}

} // namespace Tessellum::AppConfig::Backends::utils
