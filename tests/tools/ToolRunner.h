#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <csignal>

namespace ToolSupport {

// Of a program that does not hang; it may have a hundred thousand lines to read on a machine with much to do.
constexpr int LongestRun = 240000;

/*! What a run of the program ended with. */
struct Outcome
{
    int exitCode = -1;
    QString output;
    QString errors;
};

inline Outcome runTool(const QStringList &arguments, const QByteArray &input = {})
{
    QProcess process;
    process.start(QStringLiteral(TESSELLUM_TOOL), arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(LongestRun) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

inline QJsonObject named(const char *name, int number)
{
    return {{"name", QString(name)}, {"number", number}};
}

/*! A shell, or another command that writes lines, that is spoken to line by line. */
class ShellProcess
{
public:
    explicit ShellProcess(const QStringList &arguments = {QStringLiteral("shell")})
    {
        process.start(QStringLiteral(TESSELLUM_TOOL), arguments);
    }
    ~ShellProcess()
    {
        process.closeWriteChannel();
        process.waitForFinished(LongestRun);
    }

    /*! The object that answers \a command; what was heard before it is kept in heard. */
    QJsonObject ask(const QByteArray &command)
    {
        process.write(command + '\n');
        while (true) {
            const QJsonObject object = next();
            if (!object.contains("notify"))
                return object;
            heard.append(object);
        }
    }
    bool succeeds(const QByteArray &command) { return ask(command).value("ok").toBool(); }
    /*! One line for each of \a commands, which are sent at once. */
    bool succeedAll(const QByteArray &commands)
    {
        process.write(commands);
        bool ok = true;
        for (int left = commands.count('\n'); left > 0; --left)
            ok = next().value("ok").toBool() && ok;
        return ok;
    }
    qint64 processId() const { return process.processId(); }

    /*! The next notice, an empty object if none comes. */
    QJsonObject hear()
    {
        if (!heard.isEmpty())
            return heard.takeFirst();
        const QJsonObject object = next();
        return object.contains("notify") ? object : QJsonObject();
    }

    int finish()
    {
        process.closeWriteChannel();
        return process.waitForFinished(LongestRun) ? process.exitCode() : -1;
    }

    void closeInput()
    {
        process.waitForBytesWritten(LongestRun);
        process.closeWriteChannel();
    }
    /*! The exit code after \a signal; -1 if it does not end, or not by itself. */
    int endBy(int signal)
    {
        if (process.processId() > 0)
            ::kill(static_cast<pid_t>(process.processId()), signal);
        return waitForExit();
    }
    int waitForExit()
    {
        const bool hasEnded = process.state() == QProcess::NotRunning || process.waitForFinished(LongestRun);
        return hasEnded && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    QString errors() { return QString::fromUtf8(process.readAllStandardError()); }

    QList<QJsonObject> heard;

    QJsonObject next()
    {
        while (!process.canReadLine()) {
            if (!process.waitForReadyRead(LongestRun))
                return {{"error", QString("no line came")}};
        }
        return QJsonDocument::fromJson(process.readLine()).object();
    }

private:
    QProcess process;
};

} // namespace ToolSupport
