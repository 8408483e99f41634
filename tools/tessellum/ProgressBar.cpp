#include "ProgressBar.h"

#include <QLocale>
#include <QString>

#include <cstdio>
#include <unistd.h>

namespace Tessellum::Tool {

namespace {

/*! "[########------------]  40 %  1.20 MiB of 3.00 MiB", or the first figure alone. */
QString textOf(qint64 done, qint64 total)
{
    constexpr int width = 40;
    constexpr int percent = 100;
    const QLocale locale = QLocale::c();
    const QString size = locale.formattedDataSize(done);
    if (total <= 0)
        return size;
    const double part = qBound(0.0, double(done) / double(total), 1.0);
    const int filled = int(part * width);
    return QStringLiteral("[%1%2] %3 %  %4 of %5")
        .arg(QString(filled, QLatin1Char('#')), QString(width - filled, QLatin1Char('-')))
        .arg(int(part * percent), 3)
        .arg(size, locale.formattedDataSize(total));
}

} // namespace

ProgressBar::ProgressBar()
    : isTerminal(isatty(STDERR_FILENO) == 1)
{ }

ProgressBar::~ProgressBar()
{
    if (sinceLast.isValid())
        std::fputc('\n', stderr);
}

void ProgressBar::show(qint64 done, qint64 total)
{
    constexpr qint64 shortestIntervalMs = 50;
    constexpr int lineWidth = 78;
    const bool isSoon = sinceLast.isValid() && sinceLast.elapsed() < shortestIntervalMs;
    if (!isTerminal || (isSoon && done != total))
        return;
    sinceLast.start();
    const QByteArray line = '\r' + textOf(done, total).leftJustified(lineWidth).toUtf8();
    std::fputs(line.constData(), stderr);
    std::fflush(stderr);
}

} // namespace Tessellum::Tool
