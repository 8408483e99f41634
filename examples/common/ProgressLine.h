#pragma once

#include <QElapsedTimer>
#include <QString>

/*! One line on the terminal that shows how far long work has come; silent where standard output is no
 * terminal. */
class ProgressLine
{
public:
    ProgressLine();
    /*! Wipes the line. */
    ~ProgressLine();
    Q_DISABLE_COPY_MOVE(ProgressLine)

    /*! Shows \a text, at most some 20 times a second. */
    void show(const QString &text);

private:
    void write(const QString &text) const;

    const bool isTerminal;
    QElapsedTimer sinceLast;
};
