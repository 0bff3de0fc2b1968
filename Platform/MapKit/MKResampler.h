// Scales a picture to another size with a smooth filter, row by row, so that neither the whole source nor the whole
// target need be at hand. Used on one thread.
#pragma once

#include <functional>
#include <vector>

namespace veyra {

/// Where the target lies in the source along one axis: the middle of target pixel i is at (i + 0.5) * step + start in
/// the source's pixels.
struct MKResampledAxis {
    double start = 0;
    double step = 1; ///< source pixels a target pixel, at most 2
    int targetSide = 0, sourceSide = 0;

    /// How far beyond the target's edges the filter looks, in source pixels.
    static double reach(double step);
};

/// `Channels` floats a pixel; 4 and 8 are there.
template <int Channels>
class MKResampler {
public:
    /// Fills row `y` of the source.
    using Source = std::function<void(int y, float* row)>;
    /// Takes row `y` of the target; valid during the call.
    using Target = std::function<void(int y, const float* row)>;

    MKResampler(const MKResampledAxis& across, const MKResampledAxis& down);
    /// Asks for each row of the source that it needs once, from the top, and gives each row of the target once, from
    /// the top. What those throw is passed on.
    void run(const Source& source, const Target& target) const;

private:
    struct Taps {
        int first = 0;
        std::vector<float> weights;
    };
    static std::vector<Taps> tapsFor(const MKResampledAxis& axis);
    void scaleRow(const float* row, float* scaled) const;

    const MKResampledAxis _across, _down;
    const std::vector<Taps> _columns, _rows;
};

} // namespace veyra
