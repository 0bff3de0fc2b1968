// How the corners and ends of a stroked line look, with the platform's numbers.
#pragma once

namespace veyra {

enum CGLineJoin {
    kCGLineJoinMiter = 0,
    kCGLineJoinRound = 1,
    kCGLineJoinBevel = 2,
};

enum CGLineCap {
    kCGLineCapButt = 0,
    kCGLineCapRound = 1,
    kCGLineCapSquare = 2,
};

} // namespace veyra
