#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

namespace ToolSupport {

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
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

inline QJsonObject named(const char *name, int number)
{
    return {{"name", QString(name)}, {"number", number}};
}

/*! A shell that is spoken to line by line. */
class ShellProcess
{
public:
    ShellProcess() { process.start(QStringLiteral(TESSELLUM_TOOL), {QStringLiteral("shell")}); }
    ~ShellProcess()
    {
        process.closeWriteChannel();
        process.waitForFinished(60000);
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
        return process.waitForFinished(60000) ? process.exitCode() : -1;
    }

    QList<QJsonObject> heard;

private:
    QJsonObject next()
    {
        while (!process.canReadLine()) {
            if (!process.waitForReadyRead(60000))
                return {{"error", QString("no line came")}};
        }
        return QJsonDocument::fromJson(process.readLine()).object();
    }

    QProcess process;
};

} // namespace ToolSupport
