#pragma once

#include <QFile>

#include <unistd.h>

namespace TestSupport {

/*! While it lives nobody can make or remove a file in a folder, and one that is there can be written: also
 * where the tests run as root, whom no rights bind. */
class ClosedFolder
{
public:
    ClosedFolder(const QString &closedFolder, const QString &writableFile)
        : folder(closedFolder)
    {
        const bool isRoot = geteuid() == 0;
        closed = (!isRoot || chown(QFile::encodeName(writableFile).constData(), Ordinary, Ordinary) == 0)
            && QFile::setPermissions(folder,
                                     QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup);
        changed = closed && isRoot && seteuid(Ordinary) == 0;
        closed = closed && changed == isRoot;
    }
    ~ClosedFolder()
    {
        if (changed && seteuid(0) != 0)
            qFatal("cannot become root again");
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    Q_DISABLE_COPY_MOVE(ClosedFolder)

    bool isClosed() const { return closed; }

private:
    static constexpr uid_t Ordinary = 65534;

    const QString folder;
    bool closed = false;
    bool changed = false; // of user
};

} // namespace TestSupport
