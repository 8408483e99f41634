#include <appconfig/attributes/AttributeCreation.h>
#include <appdata/data/elements/Element.h>
#include <appdata/data/elements/ElementReference.h>
#include <appdata/data/entries/utils/PairLinks.h>
#include <appdata/storages/utils/DetachEntry.h>
#include <appdata/utils/LoadStatusMirror.h>
#include <appdata/utils/RepositoryProvider.h>
#include <notification/utils/MakeNode.h>
#include <shared/hierarchy/HierarchyStringPathLink.h>
#include <shared/logging/FrameworkLog.h>

#include <QUuid>

namespace Tessellum::AppData::Data::Entries::utils {

using AppConfig::Attributes::Attribute;
using AppConfig::Attributes::AttributeAccess;
using AppConfig::Attributes::AttributeCreateData;
using AppData::utils::RepositoryProvider;
using Elements::Element;
using Elements::ElementReference;
using Notification::utils::MakeNode;
using Shared::Hierarchy::HierarchyNode;
using Shared::Hierarchy::HierarchyStringPath;
using Shared::Hierarchy::HierarchyStringPathLink;
using Shared::Logging::FrameworkLog;

using PairPtr = std::shared_ptr<ClassificationNameEntry>;

namespace {

std::shared_ptr<HierarchyNode> Root()
{
    return RepositoryProvider::getInstance()->getRoot();
}

/*! The attribute at \a pairPath and what it links to. */
struct PairLink
{
    explicit PairLink(const QString &pairPath)
        : attribute(std::dynamic_pointer_cast<Attribute>(Root()->findChildByRelativePath(pairPath)))
    {
        QVariant value;
        if (!attribute || !attribute->getValue(value, QMetaType::UnknownType)
            || value.userType() != qMetaTypeId<HierarchyStringPathLink>())
            return; // what only lies on the way to a deeper pair has no link
        entries = value.value<HierarchyStringPathLink>();
        pair = std::dynamic_pointer_cast<ClassificationNameEntry>(target(entries.pop()));
    }

    static std::shared_ptr<HierarchyNode> target(const HierarchyStringPathLink::Target &path)
    {
        const auto living = path.lock();
        const QString text = living ? living->getFullPath() : QString();
        return text.isEmpty() ? nullptr : Root()->findChildByRelativePath(text);
    }

    /*! The value with the pair in front. */
    QVariant value() const
    {
        HierarchyStringPathLink link(pair->getNodePath());
        HierarchyStringPathLink rest = entries;
        rest.cleanup();
        while (!rest.isEmpty())
            link.add(rest.pop());
        return QVariant::fromValue(link);
    }

    QList<std::shared_ptr<Entry>> livingEntries() const
    {
        QList<std::shared_ptr<Entry>> living;
        HierarchyStringPathLink rest = entries;
        while (!rest.isEmpty()) {
            if (const auto entry = std::dynamic_pointer_cast<Entry>(target(rest.pop())))
                living.append(entry);
        }
        return living;
    }

    std::shared_ptr<Attribute> attribute;
    PairPtr pair; // null without a link, or where it leads nowhere
    HierarchyStringPathLink entries; // without the pair
};

PairPtr MakePair(const Entry &entry, const QString &pairPath)
{
    EntrySerializeInformation record = entry.copyData().serialize;
    record.persistence = PersistenceType::Volatile;
    record.storageName.clear();
    record.addCounter = 0;
    record.pendingCreates.reset();
    EntryDeserializeInformation origin;
    origin.uuid = QUuid::createUuid().toString();
    const auto pair = MakeNode<ClassificationNameEntry>(EntryData(record, origin), pairPath);
    return Root()->addChild(pair) ? pair : nullptr;
}

bool MakeLink(const QString &pairPath, const QVariant &value)
{
    AttributeCreateData::AttributeCreateDataDetails details;
    details.value = value;
    details.access = AttributeAccess::Read | AttributeAccess::Write;
    return CreateAttributeInHierarchy(Root(), AttributeCreateData(pairPath, details));
}

/*! Makes the pair and its link. */
PairPtr CreatePair(const std::shared_ptr<Entry> &entry, const QString &pairPath, PairLink &link)
{
    link.pair = MakePair(*entry, pairPath);
    if (!link.pair)
        return nullptr;
    if (MakeLink(pairPath, link.value()))
        return link.pair;
    link.pair->setDeleteFlag();
    return nullptr;
}

void RemoveLink(const std::shared_ptr<Attribute> &attribute)
{
    // It may lie on the way to a deeper pair.
    if (attribute->getNumberOfChildren() > 0)
        attribute->setDetails({});
    else
        attribute->markForDeletion();
}

bool IsLiving(const std::shared_ptr<Interfaces::DataElementInterface> &element)
{
    const auto node = std::dynamic_pointer_cast<HierarchyNode>(element);
    return node && !node->isDeleteFlagSet();
}

bool Refer(const PairPtr &pair, const std::shared_ptr<Element> &element)
{
    if (const auto present = pair->getChildById(element->getId())) {
        const auto reference = std::dynamic_pointer_cast<ElementReference>(present);
        if (reference && IsLiving(reference->getTarget()))
            return true;
        present->setDeleteFlag();
    }
    return pair->addChild(MakeNode<ElementReference>(element->getId(), element));
}

/*! Shows the elements that came before the entry was linked. */
void ReferToElements(const PairPtr &pair, Entry &entry)
{
    for (const auto &child : entry.getChildren(false)) {
        if (const auto element = std::dynamic_pointer_cast<Element>(child))
            Refer(pair, element);
    }
}

void Dereference(const PairLink &link, const std::shared_ptr<Element> &element)
{
    const QString uuid = element->getId();
    const auto reference = std::dynamic_pointer_cast<ElementReference>(link.pair->getChildById(uuid));
    if (!reference)
        return;
    const auto target = reference->getTarget();
    if (target && target != element)
        return; // it shows the namesake
    reference->setDeleteFlag();
    for (const auto &entry : link.livingEntries()) {
        const auto namesake = std::dynamic_pointer_cast<Element>(entry->getChildById(uuid));
        if (namesake && namesake != element && Refer(link.pair, namesake))
            return;
    }
}

} // namespace

QString PairPath(const QString &classification, const QString &name)
{
    return HierarchyStringPath::JoinPath({classification, name},
                                         HierarchyNode::GetHierarchyNodePathSeparator());
}

PairPtr LinkEntryToPair(const std::shared_ptr<Entry> &entry)
{
    const QString pairPath = entry->getPairPath();
    const auto path = entry->getNodePath();
    const QString fullPath = path->getFullPath();
    PairPtr pair;
    {
        const Entry::LateAnnouncements announcements; // come when no lock is held
        const QMutexLocker lock(&RepositoryProvider::getInstance()->pairMutex());
        PairLink link(pairPath);
        link.entries.add(path);
        if (!link.pair)
            pair = CreatePair(entry, pairPath, link);
        else if (link.attribute->setValue(link.value()))
            pair = link.pair;
        entry->setLinkedPair(pair);
        if (pair)
            ReferToElements(pair, *entry);
    }
    if (pair)
        return pair;
    FrameworkLog().warning() << "EntryCreateTask::createEntryForClassificationAndName() failed to link uuid "
                                "to entry path, removing the entry from the hierarchy and storage, uuid="
                             << entry->getId();
    Storages::utils::DetachEntry(entry);
    AppData::utils::LoadStatusMirror::StartRemoval(fullPath);
    return nullptr;
}

void UnlinkEntryFromPair(const std::shared_ptr<Entry> &entry)
{
    QString removedPath;
    {
        const Entry::LateAnnouncements announcements; // come when no lock is held
        const QMutexLocker lock(&RepositoryProvider::getInstance()->pairMutex());
        if (!entry->getLinkedPair())
            return;
        entry->setLinkedPair(nullptr);
        PairLink link(entry->getPairPath());
        if (!link.pair)
            return;
        link.entries.remove(entry->getNodePath());
        link.entries.cleanup();
        if (link.entries.isEmpty()) {
            removedPath = link.pair->getNodePath()->getFullPath();
            RemoveLink(link.attribute);
            link.pair->setDeleteFlag();
        } else {
            link.attribute->setValue(link.value());
            for (const auto &child : entry->getChildren(false)) {
                if (const auto element = std::dynamic_pointer_cast<Element>(child))
                    Dereference(link, element);
            }
        }
    }
    if (!removedPath.isEmpty())
        AppData::utils::LoadStatusMirror::StartRemoval(removedPath);
}

PairPtr FindPair(const QString &pairPath)
{
    return PairLink(pairPath).pair;
}

QList<std::shared_ptr<Entry>> EntriesOfPair(const QString &pairPath)
{
    return PairLink(pairPath).livingEntries();
}

bool AddElementReference(const std::shared_ptr<Entry> &entry, const std::shared_ptr<Element> &element)
{
    PairPtr pair;
    {
        const Entry::LateAnnouncements announcements; // come when no lock is held
        const QMutexLocker lock(&RepositoryProvider::getInstance()->pairMutex());
        pair = entry->getLinkedPair();
        if (!pair || element->isDeleteFlagSet() || Refer(pair, element))
            return true;
    }
    FrameworkLog().warning() << "ElementsCreateTask::addElementToEntryAsChild() failed to add element="
                             << element->getId() << " to the entry=" << pair->getId()
                             << " as reference=" << 1;
    return false;
}

void RemoveElementReference(const QString &pairPath, const std::shared_ptr<Element> &element)
{
    const Entry::LateAnnouncements announcements; // come when no lock is held
    const QMutexLocker lock(&RepositoryProvider::getInstance()->pairMutex());
    const PairLink link(pairPath);
    if (link.pair)
        Dereference(link, element);
}

} // namespace Tessellum::AppData::Data::Entries::utils
