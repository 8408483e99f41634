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
using Notification::DeletePoint;
using Notification::UpdatePoint;
using Shared::Logging::FrameworkLog;
using Shared::Synchronization::ScopedLock;

namespace {

constexpr int MinimumToForget = 64;
// From here on a text under way is not joined at its start: it would cost the list at each change, and one
// of those behind it is stored in its place.
constexpr int ManyTexts = 16;

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
    , forgetAt(MinimumToForget)
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
    QStringList names;
    for (const auto &child : getChildren(false))
        names.append(child->getId());
    return names;
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
    bool isOneOfMany = false;
    {
        const QMutexLocker locker(&listMutex);
        forgetEndedTexts();
        isOneOfMany = textsUnderWay.size() >= ManyTexts;
    }
    const QString text = UniqueText(isOneOfMany ? QString() : getElements().join(getListSeparator()));
    {
        const QMutexLocker locker(&listMutex);
        textsUnderWay.insert(text.constData(), {text, nullptr});
    }
    const auto observer = pool->startUpdateTask(self(), text, UpdatePoint::All);

    const QMutexLocker locker(&listMutex);
    const auto own = textsUnderWay.find(text.constData());
    if (own == textsUnderWay.end())
        return; // applied already
    if (observer)
        own->observer = observer;
    else
        textsUnderWay.erase(own);
}

bool HierarchyListPattern::hasTextUnderWay() const
{
    return std::any_of(textsUnderWay.cbegin(), textsUnderWay.cend(), [](const TextUnderWay &other) {
        return !other.observer || !other.observer->isEnded();
    });
}

void HierarchyListPattern::forgetEndedTexts()
{
    // Few are left over: those of tasks that were discarded, or whose text a validation refused or changed.
    if (textsUnderWay.size() < forgetAt)
        return;
    for (auto entry = textsUnderWay.begin(); entry != textsUnderWay.end();) {
        if (entry->observer && entry->observer->isEnded())
            entry = textsUnderWay.erase(entry);
        else
            ++entry;
    }
    forgetAt = std::max(MinimumToForget, 2 * textsUnderWay.size());
}

bool HierarchyListPattern::setValue(const QVariant &value)
{
    bool isOwn = false;
    bool isLast = false;
    if (value.userType() == QMetaType::QString) {
        const QString text = value.toString();
        const QMutexLocker locker(&listMutex);
        isOwn = textsUnderWay.remove(text.constData()) > 0;
        isLast = isOwn && !hasTextUnderWay();
    }
    if (!isOwn)
        return Attribute::setValue(value);
    if (!isLast)
        return true; // the text is joined when the last one is applied
    const QString separator = getListSeparator();
    // One step, or a text that was joined earlier could be stored later.
    const ScopedLock lock(self());
    return Attribute::setValue(getElements().join(separator));
}

} // namespace Tessellum::Core
