#include "EnumNames.h"

namespace Tessellum::Tool {

using Notification::CreatePoint;
using Notification::DeletePoint;
using Notification::UpdatePoint;
using Notification::UpdateResult;
using Shared::Logging::LogMessageType;

QVector<NamedValue<CreatePoint>> NamedValues(CreatePoint)
{
    return {{"Begin", CreatePoint::Begin}, {"Done", CreatePoint::Done}, {"All", CreatePoint::All}};
}

QVector<NamedValue<UpdatePoint>> NamedValues(UpdatePoint)
{
    return {{"Check", UpdatePoint::Check},
            {"Apply", UpdatePoint::Apply},
            {"Failed", UpdatePoint::Failed},
            {"Done", UpdatePoint::Done},
            {"All", UpdatePoint::All}};
}

QVector<NamedValue<DeletePoint>> NamedValues(DeletePoint)
{
    return {{"Begin", DeletePoint::Begin}, {"Done", DeletePoint::Done}, {"All", DeletePoint::All}};
}

QVector<NamedValue<UpdateResult>> NamedValues(UpdateResult)
{
    return {{"Ok", UpdateResult::Ok},
            {"CheckFailed", UpdateResult::CheckFailed},
            {"ApplyFailed", UpdateResult::ApplyFailed},
            {"NodeGone", UpdateResult::NodeGone}};
}

QVector<NamedValue<LogMessageType>> NamedValues(LogMessageType)
{
    return {{"verbose", LogMessageType::verbose},   {"debug", LogMessageType::debug},
            {"log", LogMessageType::log},           {"warning", LogMessageType::warning},
            {"critical", LogMessageType::critical}, {"fatal", LogMessageType::fatal}};
}

QVector<NamedValue<AppData::ActivationMask>> NamedValues(AppData::ActivationMask)
{
    using AppData::ActivationMask;
    return {{"Active", ActivationMask::Active},
            {"Inactive", ActivationMask::Inactive},
            {"All", ActivationMask::All}};
}

QVector<NamedValue<AppData::LoadStatus>> NamedValues(AppData::LoadStatus)
{
    using AppData::LoadStatus;
    return {{"Unknown", LoadStatus::Unknown},
            {"CurrentlyLoading", LoadStatus::CurrentlyLoading},
            {"CurrentlyUnloading", LoadStatus::CurrentlyUnloading},
            {"Loaded", LoadStatus::Loaded},
            {"NotLoaded", LoadStatus::NotLoaded}};
}

QVector<NamedValue<AppData::PersistenceType>> NamedValues(AppData::PersistenceType)
{
    using AppData::PersistenceType;
    return {{"Unknown", PersistenceType::Unknown},
            {"Persistent", PersistenceType::Persistent},
            {"Volatile", PersistenceType::Volatile}};
}

} // namespace Tessellum::Tool
