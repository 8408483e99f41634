#include "Screen.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

/*! What the terminal can show: lines that wrap or scroll away would not be wiped. */
winsize terminalSize()
{
    winsize size = {};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
        size.ws_col = 80;
        size.ws_row = 24;
    }
    return size;
}

} // namespace

Screen::Screen(QTextStream &output)
    : out(output)
    , isTerminal(isatty(STDOUT_FILENO) == 1)
{
    clock.start();
}

void Screen::tell(const QString &line)
{
    wipe();
    out << QStringLiteral("%1 s  %2").arg(static_cast<double>(clock.elapsed()) / 1000.0, 6, 'f', 1).arg(line)
        << Qt::endl;
}

void Screen::show(const QStringList &lines)
{
    constexpr qint64 plainIntervalMs = 5000;
    if (!isTerminal) {
        if (sinceBlock.isValid() && sinceBlock.elapsed() < plainIntervalMs)
            return;
        sinceBlock.start();
        finish(lines);
        return;
    }
    wipe();
    const winsize size = terminalSize();
    height = qMin<int>(lines.size(), size.ws_row - 1);
    for (int i = 0; i < height; ++i)
        out << lines.at(i).left(size.ws_col) << '\n';
    out << Qt::flush;
}

void Screen::finish(const QStringList &lines)
{
    wipe();
    for (const QString &line : lines)
        out << line << '\n';
    out << Qt::flush;
}

void Screen::wipe()
{
    // Up to the first line of the block, and everything from there on away.
    if (height > 0)
        out << QStringLiteral("\x1b[%1A\x1b[J").arg(height);
    height = 0;
}
