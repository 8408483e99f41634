#pragma once

#include <QElapsedTimer>
#include <QtGlobal>

namespace Tessellum::Tool {

/*! A line on the terminal that shows how much of something has come; silent where standard error is no
 * terminal. */
class ProgressBar
{
public:
    ProgressBar();
    /*! Ends the line. */
    ~ProgressBar();
    Q_DISABLE_COPY_MOVE(ProgressBar)

    /*! Shows \a done of \a total bytes, at most some 20 times a second and always when they are all; a \a
     * total of 0 or less is one that is not known. */
    void show(qint64 done, qint64 total);

private:
    const bool isTerminal;
    QElapsedTimer sinceLast;
};

} // namespace Tessellum::Tool
