#pragma once

#include <QTextStream>

/*! Tells on a line of its own whether \a what held, and returns \a held. */
inline bool TellStep(QTextStream &out, const QString &what, bool held)
{
    out << (held ? "  ok      " : "  FAILED  ") << what << Qt::endl;
    return held;
}
