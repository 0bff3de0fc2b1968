// Scales a picture to a square of another size with a smooth filter, along one axis after the other. Used on one
// thread.
#pragma once

#include <cstddef>
#include <vector>

namespace veyra {

/// Channels of floats, row by row.
struct MKFloatPicture {
    int side = 0;
    int channels = 0;
    std::vector<float> values;

    MKFloatPicture(int pixels, int channelCount)
        : side(pixels), channels(channelCount),
          values(static_cast<size_t>(pixels) * static_cast<size_t>(pixels) * static_cast<size_t>(channelCount)) {}
    float* at(int x, int y) {
        return &values[(static_cast<size_t>(y) * static_cast<size_t>(side) + static_cast<size_t>(x)) *
                       static_cast<size_t>(channels)];
    }
    const float* at(int x, int y) const { return const_cast<MKFloatPicture*>(this)->at(x, y); }
};

/// Where the target lies in the source along one axis: the middle of target pixel i is at (i + 0.5) * step + start in
/// the source's pixels. The source reaches at least MKResampler::reach(step) pixels further on both sides.
struct MKResampler {
    double start = 0;
    double step = 1; ///< source pixels a target pixel, at most 2

    /// How far from a place the filter looks, in source pixels.
    static double reach(double step);
    /// `target` has the source's channels.
    static void scale(const MKFloatPicture& source, const MKResampler& horizontal, const MKResampler& vertical,
                      MKFloatPicture& target);
};

} // namespace veyra
