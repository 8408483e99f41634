#include <shared/communication/connections/MakeConnection.h>

#include <QCoreApplication>
#include <QThread>

namespace Shared::Communication::Connections {

void ConnectionReleaser::operator()(QObject *object) const
{
    if (!object)
        return;
    // A thread that has ended, or one without an application, delivers no deferred deletion.
    const QThread *const home = object->thread();
    if (!home || home->isFinished() || !QCoreApplication::instance())
        delete object;
    else
        object->deleteLater();
}

} // namespace Shared::Communication::Connections
