#pragma once

#include <appconfig/attributes/Attribute.h>
#include <notification/ThreadPool.h>

#include <QMutex>

#include <vector>

namespace Tessellum::Core {

/*!
 * A list kept in the tree twice over: as the attribute's own text, the names joined by the separator, and as
 * one child attribute for each element. Children are right at once, the text follows by a task for each
 * change. A task joins the names that are there when it begins, so that many changes in a row cost few texts,
 * and a text of fewer changes never replaces one of more: however the tasks overtake each other, in the end
 * the text has all names. An update that does not come from the list writes the attribute like any other.
 *
 * A name with a path separator is found by hasElement() and getElement() alone, not by a path; one with the
 * list separator reads as two names in the text.
 *
 * Threads: any. listMutex makes each addition and removal one step and guards the count of changes and the
 * texts that are under way; the node's lock is taken inside it, no task is started under it, and none is
 * waited for. The node's lock guards storedChange.
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

    /*! As Attribute, but the text of one of the list's own tasks is dropped (still true) where one of more
     * changes is stored. */
    bool setValue(const QVariant &value) override;

private:
    using NodePtr = std::shared_ptr<Shared::Hierarchy::HierarchyNode>;

    /*! A text that tasks of the list carry. Its buffer is shared with their values and with no other text,
     * which tells them from updates of others. */
    struct ListText
    {
        QString text;
        quint64 change; ///< the number of the last change that is in it for certain
        int underWay; ///< the tasks that have not come to write it
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
    QString takePresentText();
    quint64 changeOfText(const QVariant &value);
    static bool HasEnded(const ListText &text);

    Notification::ThreadPool *const pool;
    QMutex listMutex;
    quint64 changes = 0;
    std::vector<ListText> texts;
    quint64 storedChange = 0;
};

} // namespace Tessellum::Core
