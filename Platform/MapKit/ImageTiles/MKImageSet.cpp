#include "Platform/MapKit/ImageTiles/MKImageSet.h"

#include <atomic>

namespace veyra {

namespace {

uint64_t nextIdentifier() {
    static std::atomic<uint64_t> last{0};
    return ++last;
}

} // namespace

MKImageSet::MKImageSet(MKImageSetProperties properties)
    : _identifier(nextIdentifier()), _properties(std::move(properties)) {}

} // namespace veyra
