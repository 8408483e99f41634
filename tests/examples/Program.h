#pragma once

#include <QDebug>
#include <QProcess>
#include <QStringList>

namespace ExampleSupport {

inline constexpr int Patience = 60000;

/*! A program whose lines are read. It does not outlive this object. */
class Program
{
public:
    Program(const char *file, const QStringList &arguments)
    {
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QString(file), arguments);
    }
    ~Program() { kill(); }

    /*! Reads on to a line that holds \a part; empty if none comes. */
    QString lineWith(const char *part)
    {
        do {
            while (process.canReadLine()) {
                const QString line = QString::fromUtf8(process.readLine()).trimmed();
                read.append(line);
                if (line.contains(QLatin1String(part)))
                    return line;
            }
        } while (process.waitForReadyRead(Patience) || process.canReadLine());
        qWarning().noquote() << read.join('\n');
        return {};
    }
    bool tells(const char *part) { return !lineWith(part).isEmpty(); }

    /*! The code with which it ends when it is asked to; -1 if it does not. */
    int end()
    {
        process.terminate();
        return exitCode();
    }
    int exitCode()
    {
        const bool ended = process.waitForFinished(Patience) || process.state() == QProcess::NotRunning;
        return ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    void kill()
    {
        process.kill();
        process.waitForFinished(Patience);
    }

private:
    QProcess process;
    QStringList read;
};

} // namespace ExampleSupport
