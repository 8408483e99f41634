#pragma once

#include <shared/TessellumExport.h>

#include <QSharedMemory>
#include <QString>

#include <memory>

namespace Shared::Foundation::Platform {
class SystemSemaphore;
}

namespace Shared::Synchronization {

/*!
 * A mark on this machine that says which process uses the resource of a name.
 *
 * The mark names its owner, and counts only while that process lives: what a crashed one has left behind is
 * no obstacle. It is a mark and not a mutex: two processes that call tryToUse() at the same moment may both
 * get true. It lies in a shared memory under the key, as "<process id>|<path of the program>" with further
 * fields behind it, and goes with the last object of that key. A process that ends need not take its mark
 * back.
 *
 * Threads: an object may be used by one thread at a time. A call waits for another process that reads or
 * writes the mark, which takes a moment, and gives up after five seconds.
 */
class TESSELLUM_EXPORT SystemScopeLock
{
public:
    /*! \a size is the most bytes the mark can have, with a zero at its end; the rest is cut off. */
    SystemScopeLock(const QString &key, const int &size);
    virtual ~SystemScopeLock();
    Q_DISABLE_COPY(SystemScopeLock)

    /*! Whether there is a mark that can be used; else all functions give false or an empty text. */
    bool isValid() const;
    bool hasError() const;
    /*! What the system says, empty without an error. */
    QString getErrorString() const;

    /*! The text of the mark, empty when nobody has used it. */
    QString getData();
    /*! Whether the process in the mark lives, be it this one. A process with its number that is known to run
     * another program is not it. */
    bool isInUse();
    /*! Sets the mark to this process, unless it is in use. */
    bool tryToUse();
    /*! Adds a field to the mark. clear() takes a mark with further fields for somebody else's. */
    bool appendData(const QString &text);
    /*! Takes the mark of this process back; false, with the mark as it is, if it is not this process's. */
    bool clear();

private:
    class Section;

    void open(int size);
    bool attach();
    /*! In a section, attached. */
    QString read() const;
    void write(const QString &text);
    QString ownMark() const;
    bool isOwnerAlive(int processId, const QString &data) const;

    const QString applicationPath;
    QSharedMemory memory;
    bool valid = false;
    const QString key;
    std::unique_ptr<Foundation::Platform::SystemSemaphore>
        semaphore; /*!< what QSharedMemory::lock() takes for the key */
    QString lockError; /*!< why the semaphore cannot be had */
};

} // namespace Shared::Synchronization
