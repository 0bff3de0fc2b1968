#include "Classes/VeyraAnnotationRegistry.h"

#include <utility>

namespace veyra {

uint32_t VeyraAnnotationRegistry::numberOf(const id& identifier) const {
    return _numbers.find(identifier.hash(),
                         [&](uint32_t number) { return _records[number]->identifier() == identifier; });
}

VeyraAnnotationRegistry::Record VeyraAnnotationRegistry::find(const id& identifier) const {
    const uint32_t number = numberOf(identifier);
    return number == NumberTable::none ? nullptr : _records[number];
}

VeyraAnnotationRegistry::Record VeyraAnnotationRegistry::put(Record record) {
    const uint32_t number = numberOf(record->identifier());
    if (number != NumberTable::none)
        return std::exchange(_records[number], std::move(record));
    const size_t hash = record->identifier().hash();
    _records.resize(_records.size() + 1);
    _records.back() = std::move(record);
    _numbers.insert(hash, static_cast<uint32_t>(_records.size() - 1));
    return nullptr;
}

VeyraAnnotationRegistry::Record VeyraAnnotationRegistry::take(const id& identifier) {
    const uint32_t number = numberOf(identifier);
    if (number == NumberTable::none)
        return nullptr;
    _numbers.remove(identifier.hash(), number);
    Record taken = std::move(_records[number]);
    const auto last = static_cast<uint32_t>(_records.size() - 1);
    if (number != last) {
        _numbers.replace(_records[last]->identifier().hash(), last, number);
        _records[number] = std::move(_records[last]);
    }
    _records.resize(last);
    return taken;
}

NSArray VeyraAnnotationRegistry::identifiers() const {
    NSArray identifiers;
    identifiers.reserve(_records.size());
    for (size_t number = 0; number < _records.size(); ++number)
        identifiers.push_back(_records[number]->identifier());
    return identifiers;
}

} // namespace veyra
