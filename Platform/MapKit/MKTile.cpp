#include "Platform/MapKit/MKTile.h"

#include <atomic>

namespace veyra {

namespace {

uint64_t nextIdentifier() {
    static std::atomic<uint64_t> last{0};
    return ++last;
}

} // namespace

MKTileSource::MKTileSource() : _identifier(nextIdentifier()) {}

} // namespace veyra
