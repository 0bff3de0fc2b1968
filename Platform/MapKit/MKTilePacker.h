// Has the pictures of tiles packed that nothing has drawn for a while. Main queue only; the workers do the packing.
//
// A picture that is drawn now and then stays as it is, however small the part of it that is drawn, and each is packed
// once at most: a map on which something moves costs nothing here.
#pragma once

#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/MapKit/MKTile.h"
#include "Platform/MapKit/MKTileWorkers.h"

#include <map>

namespace veyra {

class MKTilePacker {
public:
    /// Seconds after which a picture that nothing has drawn is packed.
    static constexpr double rest = 2;

    /// `packed` is called with a tile that takes less memory than before.
    MKTilePacker(MKTileWorkers& workers, std::function<void(const MKTile&)> packed);

    /// Says that a tile has come, or is being drawn.
    void use(const std::shared_ptr<const MKTile>& tile);

private:
    struct Use {
        double last = 0; // monotonic seconds
        bool isGivenToWorkers = false;
    };
    void packRested();
    /// False while the workers have yet to pack the tile's picture; true when all is done with it that can be.
    bool packOrGive(const std::shared_ptr<const MKTile>& tile, Use& use);
    void giveToWorkers(const std::shared_ptr<const MKTile>& tile);

    MKTileWorkers& _workers;
    const std::function<void(const MKTile&)> _packed;
    // Of the tiles with pixels that are worth packing.
    std::map<std::weak_ptr<const MKTile>, Use, std::owner_less<>> _uses;
    DispatchTimer _timer;
};

} // namespace veyra
