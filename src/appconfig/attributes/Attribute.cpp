#include <appconfig/attributes/Attribute.h>
#include <appconfig/utils/ValueConversion.h>
#include <shared/synchronization/ScopedLock.h>

#include <utility>

namespace Tessellum::AppConfig::Attributes {

using Shared::Hierarchy::HierarchyNode;
using Shared::Synchronization::ScopedLock;

namespace {

AttributeCreateData::AttributeCreateDataDetails PlainDetails(const QVariant &value)
{
    AttributeCreateData::AttributeCreateDataDetails details;
    details.value = value;
    details.access = AttributeAccess::Read | AttributeAccess::Write;
    return details;
}

} // namespace

Attribute::State::State(const Details &details)
    : value(details.value)
    , access(details.access)
    , valueSource(details.valueSource)
{
    if (details.reader || details.writer)
        functions = std::make_unique<Functions>(Functions{details.reader, details.writer});
}

Attribute::Attribute(const QString &name)
    : Attribute(name, QVariant())
{ }

Attribute::Attribute(const QString &name, const QVariant &value)
    : Attribute(name, PlainDetails(value))
{ }

Attribute::Attribute(const QString &name, const Details &details)
    : HierarchyNodeInstance(name)
    , AppConfigRepositoryEventThreadUser(this)
    , state(details)
{ }

bool Attribute::isDeleteFlagSet() const
{
    return HierarchyNodeInstance::isDeleteFlagSet();
}

bool Attribute::isLocked() const
{
    return HierarchyNodeInstance::isLocked();
}

bool Attribute::hasValue() const
{
    QVariant value;
    return read(value) && value.isValid();
}

bool Attribute::getValue(QVariant &out, const int &metaType) const
{
    return read(out) && (metaType == QMetaType::UnknownType || out.convert(metaType));
}

bool Attribute::getLocalizedValue(QVariant &out,
                                  const std::shared_ptr<Core::CoreLocalizationInterface> &localization,
                                  const int &metaType) const
{
    return read(out)
        && (metaType == QMetaType::UnknownType
            || AppConfig::utils::ConvertValue(out, localization, metaType));
}

QString Attribute::getId() const
{
    return HierarchyNodeInstance::getId();
}

QString Attribute::getPath() const
{
    return getNodePath()->getFullPath();
}

quint32 Attribute::getAccess() const
{
    const ScopedLock lock(this);
    return state.access;
}

bool Attribute::markForDeletion()
{
    return setDeleteFlag();
}

bool Attribute::setValue(const QVariant &value)
{
    std::shared_ptr<const HierarchyNode> keepAlive; // the writer may drop the last other pointer
    QVariant replaced = value; // what stood there is freed with the lock open
    const ScopedLock lock(this);
    if (!(state.access & AttributeAccess::Write))
        return false;
    if (!state.functions || !state.functions->writer) {
        state.value.swap(replaced);
        return true;
    }
    keepAlive = self();
    try {
        return state.functions->writer(state.value, value);
    } catch (...) {
        return false;
    }
}

void Attribute::setDetails(const Details &details)
{
    State replaced(details); // what stood there is freed with the lock open
    const ScopedLock lock(this);
    std::swap(state, replaced);
}

bool Attribute::read(QVariant &out) const
{
    std::shared_ptr<const HierarchyNode> keepAlive; // the reader may drop the last other pointer
    const ScopedLock lock(this);
    if (!(state.access & AttributeAccess::Read))
        return false;
    if (!state.functions || !state.functions->reader) {
        out = state.value;
        return true;
    }
    keepAlive = self();
    try {
        return state.functions->reader(state.value, out);
    } catch (...) {
        return false;
    }
}

} // namespace Tessellum::AppConfig::Attributes
