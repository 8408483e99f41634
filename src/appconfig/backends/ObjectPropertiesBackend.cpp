#include <appconfig/backends/ObjectPropertiesBackend.h>
#include <appconfig/backends/utils/ObjectPropertiesToAttributeMapper.h>
#include <shared/logging/FrameworkLog.h>

#include <QCoreApplication>
#include <QPointer>

using Shared::Logging::FrameworkLog;

namespace Tessellum::AppConfig::Backends {

/*! What is known of an object without touching it again. */
struct BoundObject
{
    QPointer<QObject> object;
    Attributes::AttributesCreateData attributes;
    QList<Shared::MetaPropertyWrapperPtr> wrappers;
};

} // namespace Tessellum::AppConfig::Backends

Q_DECLARE_METATYPE(Tessellum::AppConfig::Backends::BoundObject)

namespace Tessellum::AppConfig::Backends {

namespace {

using ObjectAndNames = QPair<QObject *, QStringList>;

QStringList DefaultNames()
{
    return {"caption", "enabled", "font",    "icon",       "objectName",     "statusTip",  "styleSheet",
            "text",    "toolTip", "visible", "windowIcon", "windowIconText", "windowTitle"};
}

bool NamesObject(const QVariant &data)
{
    return data.canConvert<ObjectAndNames>() || data.canConvert<QObject *>();
}

BoundObject Bind(const QVariant &data)
{
    ObjectAndNames source(nullptr, {});
    if (data.canConvert<ObjectAndNames>())
        source = data.value<ObjectAndNames>();
    else
        source.first = data.value<QObject *>();
    if (source.second.isEmpty())
        source.second = DefaultNames();

    BoundObject bound;
    // Without an application there is no thread whose events are worked on.
    if (!QCoreApplication::instance() || !source.first)
        return bound;
    bound.object = qobject_cast<QObject *>(source.first);
    utils::ObjectPropertiesToAttributeMapper::ExtractProperties(source.first, bound.attributes,
                                                                bound.wrappers, source.second);
    return bound;
}

} // namespace

QStringList ObjectPropertiesBackend::TypeKeys()
{
    return {QStringLiteral("object_properties")};
}

QStringList ObjectPropertiesBackend::getTypeKeys() const
{
    return TypeKeys();
}

bool ObjectPropertiesBackend::saveAttributes()
{
    return false;
}

BackendCreateDataDetails ObjectPropertiesBackend::BindObject(const QString &type,
                                                             const BackendCreateDataDetails &details)
{
    BackendCreateDataDetails bound = details;
    if (TypeKeys().contains(type) && NamesObject(details.data))
        bound.data = QVariant::fromValue(Bind(details.data));
    return bound;
}

bool ObjectPropertiesBackend::loadAttributesCreateDataInternal(Attributes::AttributesCreateData &out,
                                                               const Notification::CreatePoint &)
{
    const BackendCreateData source = getCreateData();
    if (source.type.isEmpty() || source.name.isEmpty())
        return false;
    const bool isBound = source.data.canConvert<BoundObject>();
    if (!isBound && !NamesObject(source.data)) {
        FrameworkLog().warning() << "ObjectPropertiesBackend::loadAttributesCreateDataInternal() no QObject "
                                    "instance found in backend data, loading aborted";
        return false;
    }
    const BoundObject bound = isBound ? source.data.value<BoundObject>() : Bind(source.data);
    if (!bound.object) {
        FrameworkLog().warning() << "ObjectPropertiesBackend::loadAttributesCreateDataInternal() found "
                                    "invalid QObject instance in backend data, loading aborted";
        return false;
    }
    wrappers = bound.wrappers;
    out += bound.attributes;
    return true;
}

} // namespace Tessellum::AppConfig::Backends
