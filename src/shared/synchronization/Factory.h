#pragma once

#include <shared/TessellumExport.h>

#include <QHash>
#include <QList>
#include <QMutex>
#include <QMutexLocker>

#include <functional>
#include <memory>

namespace Shared {

/*!
 * A table of creator functions by key.
 *
 * Threads: any. The mutex guards the table alone: creators are copied out and run without it, so that a
 * creator may register further ones.
 */
template <class Product, class Key, class Ptr = std::shared_ptr<Product>,
          class Creator = std::function<Ptr()>>
class TESSELLUM_EXPORT Factory
{
public:
    virtual ~Factory() = default;

    /*! Enters \a creator; false, with nothing changed, where \a key is taken. */
    bool registerProduct(const Key &key, const Creator &creator)
    {
        const QMutexLocker lock(&mutex);
        if (creators.contains(key))
            return false;
        creators.insert(key, creator);
        return true;
    }

    /*! Whether there was an entry to remove. */
    bool unregisterProduct(const Key &key)
    {
        const QMutexLocker lock(&mutex);
        return creators.remove(key) > 0;
    }

    bool isProductRegistered(const Key &key) const
    {
        const QMutexLocker lock(&mutex);
        return creators.contains(key);
    }

    /*! The keys, in no particular order. */
    QList<Key> getRegisteredProductIdentifier() const
    {
        const QMutexLocker lock(&mutex);
        return creators.keys();
    }

    /*! The table as it stands now. */
    QHash<Key, Creator> getRegisteredProducts() const
    {
        const QMutexLocker lock(&mutex);
        return creators;
    }

    /*! The creator of \a key for the caller to run, or an empty one. */
    Creator getCreator(const Key &key) const
    {
        const QMutexLocker lock(&mutex);
        return creators.value(key);
    }

private:
    mutable QMutex mutex;
    QHash<Key, Creator> creators;
};

} // namespace Shared
