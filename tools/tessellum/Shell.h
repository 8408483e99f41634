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
        QJsonObject (Shell::*run)(const Arguments &arguments);
    };
    static const QVector<Entry> &Entries();

    int answer(const ShellCommand &command);
    QJsonObject execute(const ShellCommand &command);

    QJsonObject help(const Arguments &arguments);
    QJsonObject start(const Arguments &arguments);
    QJsonObject stop(const Arguments &arguments);
    QJsonObject createBackend(const Arguments &arguments);
    QJsonObject listBackends(const Arguments &arguments);
    QJsonObject saveBackend(const Arguments &arguments);
    QJsonObject query(const Arguments &arguments);
    QJsonObject get(const Arguments &arguments);
    QJsonObject create(const Arguments &arguments);
    QJsonObject update(const Arguments &arguments);
    QJsonObject remove(const Arguments &arguments);
    QJsonObject watch(const Arguments &arguments);
    QJsonObject unwatch(const Arguments &arguments);
    QJsonObject listValidations(const Arguments &arguments);
    QJsonObject assignValidation(const Arguments &arguments);
    QJsonObject removeValidation(const Arguments &arguments);
    QJsonObject addStorage(const Arguments &arguments);
    QJsonObject listStorages(const Arguments &arguments);
    QJsonObject addEntry(const Arguments &arguments);
    QJsonObject listEntries(const Arguments &arguments);
    QJsonObject addValue(const Arguments &arguments);
    QJsonObject listElements(const Arguments &arguments);
    QJsonObject listRange(const Arguments &arguments);
    QJsonObject changeElement(const Arguments &arguments);
    QJsonObject memoryStrategy(const Arguments &arguments);
    QJsonObject removeData(const Arguments &arguments);
    QJsonObject remote(const Arguments &arguments);
    QJsonObject control(const Arguments &arguments);
    QJsonObject status(const Arguments &arguments);
    QJsonObject setLogLevel(const Arguments &arguments);
    QJsonObject locale(const Arguments &arguments);
    QJsonObject version(const Arguments &arguments);
    QJsonObject addPlugins(const Arguments &arguments);

    JsonLines lines;
    Watches watches;
    bool hasQuit = false;
};

} // namespace Tessellum::Tool
