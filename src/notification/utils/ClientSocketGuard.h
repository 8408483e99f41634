#pragma once

#include <shared/TessellumExport.h>

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class QWebSocket;

namespace Tessellum::Notification::utils {

/*!
 * Ends the connection to a peer that does not take what it is sent, with 1009 and a WARNING: if those unsent
 * bytes that it caused by pings exceed a limit, for Qt answers these by itself, and at a server if none of
 * the unsent bytes goes for some seconds. How much may be unsent of what the owner of the socket sends is the
 * owner's to say.
 *
 * A closed connection that does not end by itself is cut after as many seconds. A child of the socket, on the
 * thread of which it lives; it goes with the connection, so that each one needs a guard of its own.
 */
class TESSELLUM_EXPORT ClientSocketGuard : public QObject
{
    Q_OBJECT

public:
    enum class End { Server, Client };
    static constexpr int DefaultPatience = 10000;

    /*! Makes the guard of \a guarded, which owns it. */
    static void Guard(QWebSocket *guarded, qint64 mostAnswers, End end);

    /*! For a connected socket of \a end. \a mostAnswers in bytes, \a mostPatience in milliseconds. */
    ClientSocketGuard(QWebSocket *guarded, qint64 mostAnswers, End end, int mostPatience = DefaultPatience);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void noteAnswers(qint64 bytes);
    bool flush();
    void noteWritten();
    void check();
    void close(const char *reason);

    QWebSocket *const socket;
    const qint64 limit;
    const int patience;
    qint64 unsentAnswers = 0; // at most so many of the unsent bytes are answers to pings
    bool isClosing = false;
    QElapsedTimer progress; // valid while bytes are unsent: since some went
    QTimer timer;
};

} // namespace Tessellum::Notification::utils
