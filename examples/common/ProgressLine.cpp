#include "ProgressLine.h"

#include <QTextStream>

#include <unistd.h>

ProgressLine::ProgressLine()
    : isTerminal(isatty(STDOUT_FILENO) == 1)
{ }

ProgressLine::~ProgressLine()
{
    if (sinceLast.isValid())
        write(QString());
}

void ProgressLine::show(const QString &text)
{
    constexpr qint64 shortestIntervalMs = 50;
    if (!isTerminal || (sinceLast.isValid() && sinceLast.elapsed() < shortestIntervalMs))
        return;
    sinceLast.start();
    write(text);
}

void ProgressLine::write(const QString &text) const
{
    constexpr int width = 79;
    QTextStream(stdout) << '\r' << text.left(width).leftJustified(width) << (text.isEmpty() ? "\r" : "")
                        << Qt::flush;
}
