#pragma once

#include <QTextStream>

/*! Tells on a line of its own whether \a what held, and returns \a held. */
inline bool TellStep(QTextStream &out, const QString &what, bool held)
{
    out << (held ? "  ok      " : "  FAILED  ") << what << Qt::endl;
    return held;
}

/*! Tells whether all steps held, and returns the exit code of the program. */
inline int TellEnd(QTextStream &out, bool held)
{
    out << (held ? "every step held" : "a step did NOT hold") << Qt::endl;
    return held ? 0 : 1;
}
