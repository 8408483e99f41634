#pragma once

#include <QString>

/*!
 * What LogProcessTest runs in processes of their own. Standard output tells what happened; the result is the
 * exit code.
 */
int RunLogProcessChild(const QString &scenario);
