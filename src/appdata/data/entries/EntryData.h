#pragma once

#include <appdata/data/entries/EntryDeserializeInformation.h>
#include <appdata/data/entries/EntrySerializeInformation.h>
#include <shared/synchronization/PropertyContainer.h>

namespace Tessellum::AppData::Data::Entries {

/*! The facts of an entry. */
struct EntryData : public Shared::PropertyContainer<EntryData>
{
    EntryData() = default;
    EntryData(const EntrySerializeInformation &serializeInformation,
              const EntryDeserializeInformation &deserializeInformation)
        : serialize(serializeInformation)
        , deserialize(deserializeInformation)
    { }

    EntrySerializeInformation serialize;
    EntryDeserializeInformation deserialize;
};

} // namespace Tessellum::AppData::Data::Entries
