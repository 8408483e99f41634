// The commands on what links this process with others.
#include "RunningLibrary.h"
#include "Shell.h"
#include "ValueSource.h"

#include <QUrl>
#include <QUrlQuery>

namespace Tessellum::Tool {

using Notification::CreatePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;

namespace {

/*! Under which the two kinds of links show how they stand. */
struct Kind
{
    const char *name;
    const char *root;
    const char *container;
};
constexpr Kind kinds[] = {{"configuration", "appconfig", "backends"}, {"storages", "appdata", "storages"}};

QString pathOf(const Kind &kind, const QStringList &elements)
{
    return Configuration()->getPathFromPathElements(
        QStringList{QLatin1String(kind.root), QLatin1String(kind.container)} + elements);
}

/*! The values beneath \a group by their name there; \a leaf is what stands between name and value. */
QVariantMap valuesOf(const Kind &kind, const char *group, const QString &leaf = QString())
{
    const auto repository = Configuration();
    const QString pattern = pathOf(kind, {QLatin1String(group), QStringLiteral("*")});
    const int depth = repository->getPathElementsFromPath(pattern).size();
    QVariantMap object;
    for (const auto &attribute : repository->getQueryInterface()->queryAttributes(pattern)) {
        const QStringList elements = repository->getPathElementsFromPath(attribute->getPath());
        QVariant value;
        if (elements.size() == depth + (leaf.isEmpty() ? 0 : 1) && elements.value(depth) == leaf
            && attribute->getValue(value, QMetaType::UnknownType))
            object.insert(elements.at(depth - 1), value);
    }
    return object;
}

} // namespace

QVariantMap Shell::remote(const Arguments &arguments)
{
    const QString name = arguments.text(0);
    QUrl url(arguments.text(1));
    QUrlQuery query(url);
    if (!query.hasQueryItem(QStringLiteral("id")))
        query.addQueryItem(QStringLiteral("id"), name);
    if (!query.hasQueryItem(QStringLiteral("timeout")))
        query.addQueryItem(QStringLiteral("timeout"), QString::number(TimeoutOf({arguments.text(1)})));
    url.setQuery(query);
    AppConfig::Backends::BackendCreateDataDetails details;
    details.data = url;
    details.access = 3;
    if (!Configuration()->getBackendInterface()->createBackend(QStringLiteral("remote-backend-client"), name,
                                                               details, CreatePoint::Done)) {
        Fail(QStringLiteral("the mirror was not created"));
    }
    const auto mirrored = Configuration()->getQueryInterface()->queryAttributes(name + QStringLiteral(".*"));
    return {{QStringLiteral("name"), name}, {QStringLiteral("attributes"), mirrored.size()}};
}

QVariantMap Shell::control(const Arguments &arguments)
{
    const QString id = arguments.text(0);
    const QString word = arguments.text(1);
    if (word != QLatin1String("connect") && word != QLatin1String("close"))
        FailUsage(QStringLiteral("%1 is none of connect, close").arg(word));
    const auto repository = Configuration();
    int count = 0;
    for (const Kind &kind : kinds) {
        const QString path = pathOf(kind, {QStringLiteral("remote_clients"), id, QStringLiteral("control")});
        if (repository->getQueryInterface()->getAttribute(path)
            && repository->getManipulationInterface()->updateAttribute(path, word, UpdatePoint::Done)
                == UpdateResult::Ok)
            ++count;
    }
    if (count == 0)
        Fail(QStringLiteral("there is no client %1").arg(id));
    return {{QStringLiteral("count"), count}};
}

QVariantMap Shell::status(const Arguments &)
{
    QVariantMap object;
    for (const Kind &kind : kinds) {
        object.insert(QLatin1String(kind.name),
                      QVariantMap{{QStringLiteral("clients"),
                                   valuesOf(kind, "remote_clients", QStringLiteral("status"))},
                                  {QStringLiteral("peers"), valuesOf(kind, "remote_server")},
                                  {QStringLiteral("ports"), valuesOf(kind, "remote_server_ports")}});
    }
    return object;
}

} // namespace Tessellum::Tool
