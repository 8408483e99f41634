#include <appconfig/backends/utils/ObjectPropertiesToAttributeMapper.h>
#include <shared/logging/FrameworkLog.h>

#include <QMetaObject>
#include <QMetaProperty>

using Shared::MetaPropertyWrapper;
using Shared::MetaPropertyWrapperPtr;
using Shared::Logging::FrameworkLog;

namespace Tessellum::AppConfig::Backends::utils {

namespace {

Attributes::AttributeCreateData Describe(const QMetaProperty &property, const MetaPropertyWrapperPtr &wrapper)
{
    using Attributes::AttributeAccess;
    Attributes::AttributeCreateData::AttributeCreateDataDetails details;
    details.value = QVariant::fromValue(wrapper);
    details.valueSource = Attributes::AttributeValueSource::Functions;
    details.access = 0;
    if (property.isReadable()) {
        details.reader = &ObjectPropertiesToAttributeMapper::ReadProperty;
        details.access |= AttributeAccess::Read;
    }
    if (property.isWritable()) {
        details.writer = &ObjectPropertiesToAttributeMapper::WriteProperty;
        details.access |= AttributeAccess::Write;
    }
    return {QString::fromUtf8(property.name()), details};
}

bool HoldsWrapper(const QVariant &stored)
{
    return stored.userType() == qMetaTypeId<MetaPropertyWrapperPtr>();
}

} // namespace

int ObjectPropertiesToAttributeMapper::ExtractProperties(QObject *object,
                                                         Attributes::AttributesCreateData &out,
                                                         QList<MetaPropertyWrapperPtr> &wrappers,
                                                         const QStringList &filter)
{
    const QMetaObject *const description = object->metaObject();
    int appended = 0;
    for (int index = 0; index < description->propertyCount(); ++index) {
        const QMetaProperty property = description->property(index);
        if (!property.isReadable() && !property.isWritable())
            continue;
        if (!filter.isEmpty() && !filter.contains(QString::fromUtf8(property.name()), Qt::CaseInsensitive))
            continue;
        wrappers.append(MetaPropertyWrapper::Create(property, object));
        out.append(Describe(property, wrappers.constLast()));
        ++appended;
    }
    return appended;
}

bool ObjectPropertiesToAttributeMapper::ReadProperty(const QVariant &stored, QVariant &out)
{
    if (HoldsWrapper(stored)) {
        const auto wrapper = stored.value<MetaPropertyWrapperPtr>();
        return wrapper && wrapper->readProperty(static_cast<QMetaType::Type>(out.userType()), out);
    }
    FrameworkLog().warning()
        << "ObjectPropertiesToAttributeMapper::ReadProperty() called with incompatible attribute value "
        << "metaType=" << qMetaTypeId<MetaPropertyWrapperPtr>() << " attribute=" << stored.userType();
    return false;
}

bool ObjectPropertiesToAttributeMapper::WriteProperty(QVariant &stored, const QVariant &in)
{
    if (HoldsWrapper(stored)) {
        const auto wrapper = stored.value<MetaPropertyWrapperPtr>();
        return wrapper && wrapper->writeProperty(in);
    }
    FrameworkLog().warning()
        << "ObjectPropertiesToAttributeMapper::WriteProperty() called with incompatible attribute value";
    return false;
}

} // namespace Tessellum::AppConfig::Backends::utils
