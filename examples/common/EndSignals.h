#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

/*!
 * Turns the first SIGINT or SIGTERM into a signal of the event loop, so that a program can end in order. A
 * second one ends the process at once.
 *
 * One object in a process, made and used by the main thread.
 */
class EndSignals : public QObject
{
    Q_OBJECT

public:
    EndSignals();
    ~EndSignals() override;
    Q_DISABLE_COPY_MOVE(EndSignals)

    bool wereRaised() const { return raisedBefore; }

Q_SIGNALS:
    void raised();

private:
    std::unique_ptr<QSocketNotifier> notifier;
    bool raisedBefore = false;
};
