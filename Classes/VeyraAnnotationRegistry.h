// The annotations on a map by their identifiers. Keys are any values by equality. There may be a million annotations:
// what is kept of one beside its record is some 32 bytes. A record's identifier stays as it is while the record is
// here. Owned by the plug-in's view, which guards it with its lock.
#pragma once

#include "Classes/VeyraAnnotationSO.h"
#include "Platform/Foundation/BlockArray.h"
#include "Platform/Foundation/NumberTable.h"

namespace veyra {

class VeyraAnnotationRegistry {
public:
    using Record = std::shared_ptr<VeyraAnnotationSO>;

    /// Null when there is none.
    Record find(const id& identifier) const;
    bool contains(const id& identifier) const { return numberOf(identifier) != NumberTable::none; }
    /// Enters a record under its identifier; the record that was there before, or null.
    Record put(Record record);
    /// Takes a record out; null when there is none.
    Record take(const id& identifier);
    /// In no particular order.
    NSArray identifiers() const;

private:
    uint32_t numberOf(const id& identifier) const;

    BlockArray<Record> _records; // without gaps; the index is the number
    NumberTable _numbers;
};

} // namespace veyra
