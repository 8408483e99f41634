#include <appconfig/attributes/AttributeUpdateTask.h>
#include <appconfig/HierarchyListPattern.h>
#include <appconfig/InternalSettingsProvider.h>
#include <appconfig/utils/LiveNode.h>
#include <notification/utils/MakeNode.h>
#include <shared/hierarchy/HierarchyStringPath.h>
#include <shared/logging/FrameworkLog.h>
#include <shared/synchronization/ScopedLock.h>

#include <algorithm>

namespace Tessellum::Core {

using AppConfig::Attributes::Attribute;
using AppConfig::Attributes::DeferredUpdateValue;
using Notification::DeletePoint;
using Notification::UpdatePoint;
using Shared::Logging::FrameworkLog;
using Shared::Synchronization::ScopedLock;

namespace {

/*! A copy that shares its buffer with no other text, not even where it is empty. */
QString UniqueText(const QString &text)
{
    QString unique;
    unique.reserve(text.size() + 1);
    unique.append(text);
    return unique;
}

} // namespace

HierarchyListPattern::HierarchyListPattern(Notification::ThreadPool *taskPool, const QString &listId)
    : Attribute(listId)
    , pool(taskPool)
{ }

bool HierarchyListPattern::addElementToList(const QString &name, const QVariant &value,
                                            const bool &renameOnClash)
{
    if (name.isEmpty()) {
        FrameworkLog().warning()
            << "HierarchyListPattern::addElementToList() adding elements with empty name is not supported";
        return false;
    }
    const Addition addition = addChildOrFind(name, value, renameOnClash);
    if (addition.existing) {
        pool->startUpdateTask(addition.existing, value, UpdatePoint::All);
    } else if (addition.added) {
        startTextUpdate();
    } else {
        FrameworkLog().warning() << "HierarchyListPattern::addElementToList() failed to add list entry "
                                 << addition.name << " to the list " << getPath();
    }
    return true;
}

HierarchyListPattern::Addition HierarchyListPattern::addChildOrFind(const QString &name,
                                                                    const QVariant &value, bool renameOnClash)
{
    const QMutexLocker locker(&listMutex);
    Addition addition;
    do {
        addition.name = renameOnClash ? freeName(name) : name;
        addition.existing = getChildById(addition.name);
        if (addition.existing)
            return addition;
        addition.added = addChild(Notification::utils::MakeNode<Attribute>(addition.name, value));
        // A create task that knows nothing of the list may have been quicker: then choose again.
    } while (!addition.added && HierarchyNodeInstance::hasChild(addition.name));
    if (addition.added)
        ++changes;
    return addition;
}

QString HierarchyListPattern::freeName(const QString &name) const
{
    QString candidate = name;
    for (int number = 1; hasElement(candidate); ++number)
        candidate = QStringLiteral("%1%2").arg(name, QString::number(number));
    return candidate;
}

bool HierarchyListPattern::removeElementFromList(const QString &name)
{
    if (name.isEmpty()) {
        FrameworkLog().warning()
            << "HierarchyListPattern::removeElementFromList() removing elements without name is not "
               "supported";
        return false;
    }
    const QString childPath
        = getNodePath()->getPathFromPathElements(getNodePath()->split() << name); // before the child goes
    NodePtr child;
    {
        const QMutexLocker locker(&listMutex);
        child = getChildById(name);
        if (!child)
            return false;
        child->setParent(std::weak_ptr<HierarchyNode>(), true);
        ++changes;
    }
    startTextUpdate();
    // Nobody but the task holds the child any more.
    pool->startDeleteTask(child, childPath, QVariant::fromValue(child), DeletePoint::All);
    return true;
}

bool HierarchyListPattern::hasElement(const QString &name) const
{
    const ScopedLock lock(self());
    return HierarchyNodeInstance::hasChild(name);
}

QStringList HierarchyListPattern::getElements() const
{
    return getChildIds();
}

std::shared_ptr<Attribute> HierarchyListPattern::getElement(const QString &name)
{
    const ScopedLock lock(self());
    return std::dynamic_pointer_cast<Attribute>(getChildById(name));
}

QString HierarchyListPattern::getListSeparator() const
{
    const QString fallback = QStringLiteral(";");
    const auto settings = AppConfig::InternalSettingsProvider().settings();
    return settings ? settings->readSetting<QString>(QStringLiteral("repository"),
                                                     QStringLiteral("list_separators"), fallback)
                    : fallback;
}

void HierarchyListPattern::startTextUpdate()
{
    const std::weak_ptr<HierarchyNode> me = self();
    const DeferredUpdateValue present{[me] {
        const auto list = std::static_pointer_cast<HierarchyListPattern>(me.lock());
        return list ? QVariant(list->takePresentText()) : QVariant();
    }};
    pool->startUpdateTask(me, QVariant::fromValue(present), UpdatePoint::All);
}

QString HierarchyListPattern::takePresentText()
{
    quint64 change = 0;
    {
        const QMutexLocker locker(&listMutex);
        if (!texts.empty() && texts.back().change == changes) {
            ++texts.back().underWay;
            return texts.back().text;
        }
        change = changes; // before the names are read: they hold this change, and maybe later ones
    }
    const QString text = UniqueText(getElements().join(getListSeparator()));

    const QMutexLocker locker(&listMutex);
    texts.erase(std::remove_if(texts.begin(), texts.end(), HasEnded), texts.end());
    texts.push_back({text, change, 1});
    return text;
}

bool HierarchyListPattern::HasEnded(const ListText &text)
{
    // Nobody else holds the text of a task that ended before it wrote: one that was refused or discarded.
    return text.underWay == 0 || text.text.isDetached();
}

quint64 HierarchyListPattern::changeOfText(const QVariant &value)
{
    if (value.userType() != QMetaType::QString)
        return 0;
    const QString text = value.toString();
    const QMutexLocker locker(&listMutex);
    for (ListText &own : texts) {
        if (own.underWay > 0 && own.text.constData() == text.constData()) {
            --own.underWay;
            return own.change;
        }
    }
    return 0;
}

bool HierarchyListPattern::setValue(const QVariant &value)
{
    const quint64 change = changeOfText(value);
    if (change == 0)
        return Attribute::setValue(value);
    // Test and storing are one step, or a text of fewer changes could be stored last.
    const ScopedLock lock(self());
    if (change < storedChange)
        return true;
    if (!Attribute::setValue(value))
        return false;
    storedChange = change;
    return true;
}

} // namespace Tessellum::Core
