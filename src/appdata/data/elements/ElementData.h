#pragma once

#include <appdata/data/elements/ElementDeserializeInformation.h>
#include <appdata/data/elements/ElementSerializeInformation.h>
#include <appdata/interfaces/DataElementParserInterface.h>
#include <shared/synchronization/PropertyContainer.h>

#include <QReadWriteLock>
#include <QVariant>

#include <memory>

namespace Tessellum::AppData::MemoryStrategies {
class MemoryStrategyWrapper;
}

namespace Tessellum::AppData::Data::Elements {

/*!
 * The state of an element. A copy shares the value, the lock, the parser and the wrapper. The bytes are never
 * part of it: they are in the storage alone.
 *
 * Lock: guards all other fields. Nobody enters it twice, signals are emitted and other locks but that of the
 * entry's index by time stamp are taken after it.
 */
struct ElementData : public Shared::PropertyContainer<ElementData>
{
    ElementData() = default;
    ElementData(const ElementSerializeInformation &serializeInformation,
                const ElementDeserializeInformation &deserializeInformation)
        : serialize(serializeInformation)
        , deserialize(deserializeInformation)
    { }

    ElementSerializeInformation serialize;
    ElementDeserializeInformation deserialize;
    std::shared_ptr<QVariant> parsedData = std::make_shared<QVariant>(); /*!< Never null. */
    std::shared_ptr<QReadWriteLock> lock = std::make_shared<QReadWriteLock>(QReadWriteLock::Recursive);
    LoadStatus loadStatus = LoadStatus::NotLoaded;
    std::shared_ptr<Interfaces::DataElementParserInterface> parser; /*!< May be null. */
    std::shared_ptr<MemoryStrategies::MemoryStrategyWrapper> memoryStrategy; /*!< Of the entry. */
};

} // namespace Tessellum::AppData::Data::Elements

Q_DECLARE_METATYPE(Tessellum::AppData::Data::Elements::ElementData)
