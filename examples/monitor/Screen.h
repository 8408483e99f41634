#pragma once

#include <QElapsedTimer>
#include <QStringList>
#include <QTextStream>

/*!
 * Lines that tell what has happened, and below them, on a terminal, a block of lines that is drawn again and
 * again in the same place. Where standard output is no terminal the block is written once in a while instead.
 *
 * Used by one thread.
 */
class Screen
{
public:
    explicit Screen(QTextStream &out);

    /*! Writes \a line, with the seconds since this object was made, for good. */
    void tell(const QString &line);
    /*! Replaces the block. */
    void show(const QStringList &lines);
    /*! Leaves the block where it is; what is written later comes below it. */
    void finish(const QStringList &lines);

private:
    void wipe();

    QTextStream &out;
    const bool isTerminal;
    QElapsedTimer clock;
    QElapsedTimer sinceBlock;
    int height = 0; // of the block that stands there
};
