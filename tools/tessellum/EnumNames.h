#pragma once

#include <appdata/DataTypes.h>
#include <notification/TaskPoints.h>
#include <shared/logging/LogLevel.h>

#include <QStringList>
#include <QVariantMap>
#include <QVector>

namespace Tessellum::Tool {

/*! One enumerator under its name in the code. */
template <typename Enum>
struct NamedValue
{
    const char *name;
    Enum value;
};

QVector<NamedValue<Notification::CreatePoint>> NamedValues(Notification::CreatePoint);
QVector<NamedValue<Notification::UpdatePoint>> NamedValues(Notification::UpdatePoint);
QVector<NamedValue<Notification::DeletePoint>> NamedValues(Notification::DeletePoint);
QVector<NamedValue<Notification::UpdateResult>> NamedValues(Notification::UpdateResult);
QVector<NamedValue<Shared::Logging::LogMessageType>> NamedValues(Shared::Logging::LogMessageType);
QVector<NamedValue<AppData::ActivationMask>> NamedValues(AppData::ActivationMask);
QVector<NamedValue<AppData::LoadStatus>> NamedValues(AppData::LoadStatus);
QVector<NamedValue<AppData::PersistenceType>> NamedValues(AppData::PersistenceType);

/*! Name and number of \a value. */
template <typename Enum>
QVariantMap EnumJson(Enum value)
{
    QString name;
    for (const auto &named : NamedValues(value)) {
        if (named.value == value)
            name = QString::fromLatin1(named.name);
    }
    return {{QStringLiteral("name"), name}, {QStringLiteral("number"), static_cast<int>(value)}};
}

/*! Reads a name in any case, or a number; false, with \a value untouched, for anything else. */
template <typename Enum>
bool ParseEnum(const QString &text, Enum &value)
{
    for (const auto &named : NamedValues(Enum())) {
        if (text.compare(QLatin1String(named.name), Qt::CaseInsensitive) == 0
            || text == QString::number(static_cast<int>(named.value))) {
            value = named.value;
            return true;
        }
    }
    return false;
}

/*! The names, for a message. */
template <typename Enum>
QString EnumNames(Enum)
{
    QStringList names;
    for (const auto &named : NamedValues(Enum()))
        names.append(QString::fromLatin1(named.name));
    return names.join(QStringLiteral(", "));
}

} // namespace Tessellum::Tool
