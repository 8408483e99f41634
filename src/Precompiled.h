// What nearly every source of the library includes.
#pragma once

#include <QHash>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QReadWriteLock>
#include <QString>
#include <QStringList>
#include <QTextStream>
#include <QThread>
#include <QThreadPool>
#include <QVariant>

#include <atomic>
#include <functional>
#include <memory>
