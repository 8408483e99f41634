#pragma once

#include "OtherProcess.h"
#include "ServingLibrary.h"

#include <notification/utils/WebSocketListener.h>

#include <QWebSocket>

#include <vector>

/*! The sockets, on the main thread, of another process that has no library at work. */
class ConnectedPeers
{
public:
    /*! \a arguments: what follows the role and the URL. */
    ConnectedPeers(const QString &role, int count, const QStringList &arguments)
        : listener(64 * 1024 * 1024, nullptr)
    {
        ServingLibrary::instance();
        QObject::connect(&listener, &Tessellum::Notification::utils::WebSocketListener::connected,
                         [this](QWebSocket *socket) { sockets.push_back(socket); });
        if (!listener.listen(QHostAddress::LocalHost, 0))
            qFatal("nothing listens");
        const QString url = QStringLiteral("ws://127.0.0.1:%1").arg(listener.getPort());
        process = std::make_unique<OtherProcess>(QStringList{role, url} + arguments);
        for (int others = 1; others < count; ++others)
            process->readWithEvents();
        while (int(sockets.size()) < count)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    OtherProcess &getProcess() { return *process; }

    std::vector<QWebSocket *> sockets; // the listener's

private:
    Tessellum::Notification::utils::WebSocketListener listener;
    std::unique_ptr<OtherProcess> process;
};

/*! Lets the events go on now and then, so that the other process works at the same time. */
inline void goOnAfter(int number)
{
    constexpr int pause = 64;
    if (number % pause == 0)
        QCoreApplication::processEvents();
}
