#pragma once

#include <QHash>
#include <QString>
#include <QUuid>

namespace Shared::Logging::utils {

/*! Stores callback under a fresh handle, which is returned. An empty callback is not stored: a null text. */
template <typename Callback>
QString AddCallback(QHash<QString, Callback> &callbacks, const Callback &callback)
{
    if (!callback)
        return {};
    const QString handle = QUuid::createUuid().toString();
    callbacks.insert(handle, callback);
    return handle;
}

} // namespace Shared::Logging::utils
