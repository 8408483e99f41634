// The commands on attributes, backends and validations.
#include "RunningLibrary.h"
#include "Shell.h"

namespace Tessellum::Tool {

using Notification::CreatePoint;
using Notification::DeletePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;

namespace {

constexpr int readWrite = 3;

/*! A metatype by name or number; 0 leaves a value as it is. */
int metaTypeOf(const QString &text)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    const int type = isNumber ? number : QMetaType::type(text.toUtf8());
    if (type != QMetaType::UnknownType ? !QMetaType::isRegistered(type) : text != QLatin1String("0"))
        FailUsage(QStringLiteral("%1 is no metatype").arg(text));
    return type;
}

QVariantMap describe(const AppConfig::Interfaces::AttributeInterface &attribute)
{
    QVariantMap object{{QStringLiteral("path"), attribute.getPath()},
                       {QStringLiteral("access"), static_cast<int>(attribute.getAccess())}};
    QVariant value;
    if (attribute.hasValue() && attribute.getValue(value, QMetaType::UnknownType))
        object.insert(QStringLiteral("value"), value);
    return object;
}

} // namespace

QVariantMap Shell::createBackend(const Arguments &arguments)
{
    AppConfig::Backends::BackendCreateDataDetails details;
    if (arguments.size() > 2)
        details.data = arguments.valueOrWord(2);
    details.access = static_cast<quint32>(arguments.number(3, readWrite));
    if (!Configuration()->getBackendInterface()->createBackend(arguments.text(0), arguments.text(1), details,
                                                               CreatePoint::Done)) {
        Fail(QStringLiteral("the backend was not created"));
    }
    return {{QStringLiteral("name"), arguments.text(1)}};
}

QVariantMap Shell::listBackends(const Arguments &)
{
    const auto repository = Configuration();
    const auto interface = repository->getBackendInterface();
    QVariantList backends;
    for (const QString &name : interface->getBackendNames()) {
        const auto backend = interface->getBackend(name);
        if (!backend)
            continue;
        backends.append(QVariantMap{{QStringLiteral("name"), name},
                                    {QStringLiteral("type"), backend->getType()},
                                    {QStringLiteral("description"), backend->getDescription()}});
    }
    return {{QStringLiteral("backends"), backends}, {QStringLiteral("types"), repository->getBackendTypes()}};
}

QVariantMap Shell::saveBackend(const Arguments &arguments)
{
    const auto interface = Configuration()->getBackendInterface();
    if (!interface->hasBackend(arguments.text(0)))
        Fail(QStringLiteral("there is no backend %1").arg(arguments.text(0)));
    if (!interface->saveBackend(arguments.text(0)))
        Fail(QStringLiteral("the backend was not saved"));
    return {};
}

QVariantMap Shell::query(const Arguments &arguments)
{
    QVariantList attributes;
    for (const auto &attribute : Configuration()->getQueryInterface()->queryAttributes(arguments.text(0)))
        attributes.append(describe(*attribute));
    return {{QStringLiteral("attributes"), attributes}};
}

QVariantMap Shell::get(const Arguments &arguments)
{
    QVariant value;
    const int metaType = arguments.size() > 1 ? metaTypeOf(arguments.text(1)) : int(QMetaType::UnknownType);
    if (!Configuration()->getQueryInterface()->getValue(arguments.text(0), value, metaType))
        Fail(QStringLiteral("there is no such value"));
    return {{QStringLiteral("value"), value},
            {QStringLiteral("type"), QString::fromLatin1(value.typeName())}};
}

QVariantMap Shell::create(const Arguments &arguments)
{
    const QVariant value = arguments.size() > 1 ? arguments.value(1) : QVariant();
    const CreatePoint point = arguments.enumerator(2, CreatePoint::Done);
    const QVariantMap object{{QStringLiteral("point"), EnumJson(point)}};
    if (!Configuration()->getManipulationInterface()->createAttribute(arguments.text(0), value, point,
                                                                      arguments.number(3, readWrite))) {
        Fail(QStringLiteral("the attribute was not created"), object);
    }
    return object;
}

QVariantMap Shell::update(const Arguments &arguments)
{
    const UpdatePoint point = arguments.enumerator(2, UpdatePoint::Done);
    const UpdateResult result = Configuration()->getManipulationInterface()->updateAttribute(
        arguments.text(0), arguments.value(1), point);
    const QVariantMap object{{QStringLiteral("point"), EnumJson(point)},
                             {QStringLiteral("result"), EnumJson(result)}};
    if (result != UpdateResult::Ok)
        Fail(QStringLiteral("the attribute was not updated"), object);
    return object;
}

QVariantMap Shell::remove(const Arguments &arguments)
{
    const DeletePoint point = arguments.enumerator(1, DeletePoint::Done);
    const QVariantMap object{{QStringLiteral("point"), EnumJson(point)}};
    if (!Configuration()->getManipulationInterface()->deleteAttribute(arguments.text(0), point))
        Fail(QStringLiteral("the attribute was not deleted"), object);
    return object;
}

QVariantMap Shell::watch(const Arguments &arguments)
{
    const QString kind = arguments.text(0);
    const QString pattern = arguments.text(1);
    int number = 0;
    if (kind == QLatin1String("create"))
        number = watches.addCreate(pattern, arguments.enumerator(2, CreatePoint::All));
    else if (kind == QLatin1String("update"))
        number = watches.addUpdate(pattern, arguments.enumerator(2, UpdatePoint::All));
    else if (kind == QLatin1String("delete"))
        number = watches.addDelete(pattern, arguments.enumerator(2, DeletePoint::All));
    else
        FailUsage(QStringLiteral("%1 is none of create, update, delete").arg(kind));
    if (number == 0)
        Fail(QStringLiteral("the watch was not registered"));
    return {{QStringLiteral("watch"), number}};
}

QVariantMap Shell::unwatch(const Arguments &arguments)
{
    const int before = watches.size();
    if (arguments.size() == 0)
        watches.clear();
    else if (!watches.remove(arguments.number(0, 0)))
        Fail(QStringLiteral("there is no watch %1").arg(arguments.text(0)));
    return {{QStringLiteral("removed"), before - watches.size()}};
}

QVariantMap Shell::listValidations(const Arguments &)
{
    return {{QStringLiteral("validations"), Configuration()->getValidationInterface()->getValidationIds()}};
}

QVariantMap Shell::assignValidation(const Arguments &arguments)
{
    const int count
        = Configuration()->getValidationInterface()->assignValidation(arguments.text(0), arguments.text(1));
    if (count == 0)
        Fail(QStringLiteral("no attribute took the validation"), {{QStringLiteral("count"), 0}});
    return {{QStringLiteral("count"), count}};
}

QVariantMap Shell::removeValidation(const Arguments &arguments)
{
    const int count
        = Configuration()->getValidationInterface()->removeValidation(arguments.text(0), arguments.text(1));
    if (count == 0)
        Fail(QStringLiteral("no attribute had the validation"), {{QStringLiteral("count"), 0}});
    return {{QStringLiteral("count"), count}};
}

} // namespace Tessellum::Tool
