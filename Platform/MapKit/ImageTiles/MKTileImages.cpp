#include "Platform/MapKit/ImageTiles/MKTileImages.h"

namespace veyra {

int MKTileImages::distance() const {
    int distance = 0;
    for (const MKTilePiece& piece : pieces) {
        distance += piece.place.zoom - piece.key.zoom;
    }
    return distance;
}

} // namespace veyra
