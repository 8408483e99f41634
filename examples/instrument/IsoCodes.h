#pragma once

#include <QString>
#include <QTextStream>

/*!
 * Loads every JSON file of \a directory as a backend of its own and prints count, time and memory for a
 * value. The library must not be running. False if a file did not load or nothing was there.
 */
bool LoadIsoCodes(const QString &directory, QTextStream &out);
