#include <notification/utils/MakeNode.h>

#include <QCoreApplication>

namespace Tessellum::Notification::utils {

void EventThreadReleaser::operator()(QObject *object) const
{
    if (!object)
        return;
    // A thread that has ended, or one without an application, delivers no deferred deletion.
    const QThread *const home = object->thread();
    if (!home || home == QThread::currentThread() || !QCoreApplication::instance() || home->isFinished())
        delete object;
    else
        object->deleteLater();
    // Behind it, as for nodes.
    Core::RepositoryHierarchyThreadProvider::CountRelease();
}

} // namespace Tessellum::Notification::utils
