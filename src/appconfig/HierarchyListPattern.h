#pragma once

#include <appconfig/attributes/Attribute.h>
#include <notification/ThreadPool.h>

namespace Tessellum::Core {

/*!
 * A list kept in the tree twice over: as the attribute's own text, the names joined by the separator, and as
 * one child attribute for each element. Children are right at once, the text follows by a task.
 *
 * Threads: any. listMutex orders additions and removals and guards the running number of the last text; the
 * node's lock is taken inside it, and no task is waited for.
 */
class HierarchyListPattern : public AppConfig::Attributes::Attribute
{
    Q_OBJECT
public:
    /*! \a pool runs the tasks and must outlive the list. */
    HierarchyListPattern(Notification::ThreadPool *pool, const QString &id);

    /*! Adds or updates; with \a renameOnClash a number is put behind a name that is taken. False: empty name.
     */
    bool addElementToList(const QString &name, const QVariant &value, const bool &renameOnClash);
    /*! False: empty name, or no such element. The child goes at once. */
    bool removeElementFromList(const QString &name);
    bool hasElement(const QString &name) const;
    /*! The names in the order of adding. */
    QStringList getElements() const;
    std::shared_ptr<AppConfig::Attributes::Attribute> getElement(const QString &name) const;
    /*! The setting "list_separators", read anew at each call. */
    QString getListSeparator() const;

    /*! Takes the text of a task; a text that is older than the present one is skipped (true all the same). */
    bool setValue(const QVariant &value) override;

private:
    Notification::ThreadPool *pool;
    mutable QMutex listMutex;
};

} // namespace Tessellum::Core
