#pragma once

#include <appconfig/attributes/Attribute.h>
#include <notification/ThreadPool.h>

#include <QHash>
#include <QMutex>

namespace Tessellum::Core {

/*!
 * A list kept in the tree twice over: as the attribute's own text, the names joined by the separator, and as
 * one child attribute for each element. Children are right at once, the text follows by a task, which joins
 * what is there when it is applied: however the tasks overtake each other, the last one brings the text of
 * all changes. An update that does not come from the list writes the attribute like any other.
 *
 * A name with a path separator is found by hasElement() and getElement() alone, not by a path; one with the
 * list separator reads as two names in the text.
 *
 * Threads: any. listMutex makes each addition and removal one step and guards the texts that are under way;
 * the node's lock is taken inside it, no task is started under it, and none is waited for.
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
    std::shared_ptr<AppConfig::Attributes::Attribute> getElement(const QString &name);
    /*! The setting "list_separators", read anew at each call. */
    QString getListSeparator() const;

    /*! As Attribute, but the text of one of the list's own tasks gives way to that of the present children.
     */
    bool setValue(const QVariant &value) override;

private:
    using NodePtr = std::shared_ptr<Shared::Hierarchy::HierarchyNode>;

    /*! A text that a task of the list carries. */
    struct TextUnderWay
    {
        QString text;
        std::shared_ptr<Notification::UpdateObserver> observer;
    };
    /*! What an addition came to. */
    struct Addition
    {
        QString name;
        NodePtr existing; ///< to be updated, where the name is taken and stays
        bool added = false;
    };

    Addition addChildOrFind(const QString &name, const QVariant &value, bool renameOnClash);
    QString freeName(const QString &name) const;
    void startTextUpdate();
    bool hasTextUnderWay() const; // expects listMutex
    void forgetEndedTexts();

    Notification::ThreadPool *const pool;
    QMutex listMutex;
    // By the buffer of the text, which the value of a task shares; the observer is set once the task is
    // started.
    QHash<const QChar *, TextUnderWay> textsUnderWay;
    int forgetAt;
};

} // namespace Tessellum::Core
