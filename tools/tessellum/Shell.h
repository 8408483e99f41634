#pragma once

#include "Arguments.h"
#include "JsonLines.h"
#include "Watches.h"

#include <QVector>

#include <functional>
#include <string>

namespace Tessellum::Tool {

/*!
 * Runs the commands that it reads, one a line, and answers each by one object: {"ok":true,...} or
 * {"error":"text",...}. Leaves the library stopped.
 */
class Shell
{
public:
    Shell();
    ~Shell();
    Q_DISABLE_COPY_MOVE(Shell)

    /*! Takes lines until \a readLine gives none, or to "quit". The gravest exit code that a command gave. */
    int run(const std::function<bool(std::string &line)> &readLine);
    bool wasToldToQuit() const { return hasQuit; }

    /*! The commands with their arguments and what they do, one a line. */
    static QString Help();

private:
    struct Entry
    {
        const char *name;
        const char *usage;
        const char *meaning;
        int least; ///< how many arguments it takes
        int most;
        QVariantMap (Shell::*run)(const Arguments &arguments);
    };
    static const QVector<Entry> &Entries();

    int answer(const ShellCommand &command);
    QVariantMap execute(const ShellCommand &command);

    QVariantMap help(const Arguments &arguments);
    QVariantMap start(const Arguments &arguments);
    QVariantMap stop(const Arguments &arguments);
    QVariantMap createBackend(const Arguments &arguments);
    QVariantMap listBackends(const Arguments &arguments);
    QVariantMap saveBackend(const Arguments &arguments);
    QVariantMap query(const Arguments &arguments);
    QVariantMap get(const Arguments &arguments);
    QVariantMap create(const Arguments &arguments);
    QVariantMap update(const Arguments &arguments);
    QVariantMap remove(const Arguments &arguments);
    QVariantMap watch(const Arguments &arguments);
    QVariantMap unwatch(const Arguments &arguments);
    QVariantMap listValidations(const Arguments &arguments);
    QVariantMap assignValidation(const Arguments &arguments);
    QVariantMap removeValidation(const Arguments &arguments);
    QVariantMap addStorage(const Arguments &arguments);
    QVariantMap listStorages(const Arguments &arguments);
    QVariantMap addEntry(const Arguments &arguments);
    QVariantMap listEntries(const Arguments &arguments);
    QVariantMap addValue(const Arguments &arguments);
    QVariantMap listElements(const Arguments &arguments);
    QVariantMap listRange(const Arguments &arguments);
    QVariantMap changeElement(const Arguments &arguments);
    QVariantMap memoryStrategy(const Arguments &arguments);
    QVariantMap removeData(const Arguments &arguments);
    QVariantMap remote(const Arguments &arguments);
    QVariantMap control(const Arguments &arguments);
    QVariantMap status(const Arguments &arguments);
    QVariantMap setLogLevel(const Arguments &arguments);
    QVariantMap locale(const Arguments &arguments);
    QVariantMap version(const Arguments &arguments);
    QVariantMap addPlugins(const Arguments &arguments);

    JsonLines lines;
    Watches watches;
    bool hasQuit = false;
};

} // namespace Tessellum::Tool
