#pragma once

#include <appdata/data/entries/ClassificationNameEntry.h>

#include <QMutex>

/*!
 * The pairs of classification and name: the attribute at a pair's path links to the node of the pair first
 * and then to its entries.
 *
 * Lock: pairMutex() of the RepositoryProvider makes each change of a link, of a pair's node, of its
 * references and of a storage's name one step. It is taken before the locks of nodes and never held across a
 * wait; the functions that change take it themselves.
 */
namespace Tessellum::AppData::Data::Entries::utils {

/*! Classification and name as one path below the root; pairs with equal joined paths are one pair. */
QString PairPath(const QString &classification, const QString &name);

/*! Links \a entry to its pair, which is made where it is missing; null, and \a entry is off the tree, where
 * that fails. */
std::shared_ptr<ClassificationNameEntry> LinkEntryToPair(const std::shared_ptr<Entry> &entry);
/*! Takes \a entry and the references to its elements out of its pair; a pair without entries goes, with the
 * attributes that show its status. The entry itself stays as it is. */
void UnlinkEntryFromPair(const std::shared_ptr<Entry> &entry);
/*! The node of the pair at \a pairPath below the root; null without one. */
std::shared_ptr<ClassificationNameEntry> FindPair(const QString &pairPath);
/*! The living entries of the pair in the order of the link. */
QList<std::shared_ptr<Entry>> EntriesOfPair(const QString &pairPath);

/*! Shows \a element of \a entry beneath the pair of that. A living element of that uuid is kept there, one
 * that has gone is replaced. True also where there is no pair or nothing to show any more; false where the
 * pair refuses it. */
bool AddElementReference(const std::shared_ptr<Entry> &entry,
                         const std::shared_ptr<Elements::Element> &element);
/*! Takes the reference to \a element, which is off the tree, out of its pair. An element of the same uuid in
 * another entry of the pair is shown in its place. */
void RemoveElementReference(const QString &pairPath, const std::shared_ptr<Elements::Element> &element);

} // namespace Tessellum::AppData::Data::Entries::utils
