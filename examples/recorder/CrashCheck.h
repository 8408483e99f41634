#pragma once

#include <QTextStream>

/*! What the two halves of the check need. */
struct CrashOptions
{
    QString plugins;
    QString databaseFile;
    int mode = 0; ///< of the storage
};

/*! The child's half: writes 0, 1, 2, ... as fast as it can, names each value that was taken on standard
 * output, and never ends by itself. */
int WriteUntilKilled(const CrashOptions &options);

/*! Starts this program as a child that writes, kills it hard while it does, and checks the file: what came
 * back has no gap, and in mode 1 every value that the child had named is there. */
bool KillAndCheck(const CrashOptions &options, QTextStream &out);
