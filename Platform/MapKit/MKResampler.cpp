#include "Platform/MapKit/MKResampler.h"

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

// The cubic filters of Mitchell and Netravali. Near the source's own scale the one that they recommend, neither soft
// nor ringing; enlarged more than this many times, the smoothest of them, which shows nothing of the source's grid.
constexpr double smoothestFrom = 6;

struct Filter {
    double b, c;
    double at(double x) const {
        x = std::abs(x);
        if (x < 1) {
            return ((12 - 9 * b - 6 * c) * x * x * x + (-18 + 12 * b + 6 * c) * x * x + (6 - 2 * b)) / 6;
        }
        if (x < 2) {
            return ((-b - 6 * c) * x * x * x + (6 * b + 30 * c) * x * x + (-12 * b - 48 * c) * x + (8 * b + 24 * c)) /
                   6;
        }
        return 0;
    }
};

Filter filterFor(double step) {
    const double enlarged = std::clamp(std::log(1 / step) / std::log(smoothestFrom), 0.0, 1.0);
    const double b = 1.0 / 3 + enlarged * 2 / 3;
    return {b, (1 - b) / 2};
}

// The source pixels that make up one target pixel.
struct Taps {
    int first = 0;
    std::vector<float> weights;
};

std::vector<Taps> tapsFor(const MKResampler& place, int targetSide, int sourceSide) {
    const Filter filter = filterFor(place.step);
    const double widened = std::max(1.0, place.step), reach = 2 * widened;
    std::vector<Taps> all(static_cast<size_t>(targetSide));
    for (int i = 0; i < targetSide; ++i) {
        const double middle = (i + 0.5) * place.step + place.start - 0.5;
        Taps& taps = all[static_cast<size_t>(i)];
        taps.first = std::clamp(static_cast<int>(std::ceil(middle - reach)), 0, sourceSide - 1);
        const int last = std::clamp(static_cast<int>(std::floor(middle + reach)), taps.first, sourceSide - 1);
        float sum = 0;
        for (int k = taps.first; k <= last; ++k) {
            taps.weights.push_back(static_cast<float>(filter.at((k - middle) / widened)));
            sum += taps.weights.back();
        }
        for (float& weight : taps.weights) {
            weight /= sum;
        }
    }
    return all;
}

} // namespace

double MKResampler::reach(double step) {
    return 2 * std::max(1.0, step) + 1;
}

void MKResampler::scale(const MKFloatPicture& source, const MKResampler& horizontal, const MKResampler& vertical,
                        MKFloatPicture& target) {
    const std::vector<Taps> columns = tapsFor(horizontal, target.side, source.side);
    const std::vector<Taps> rows = tapsFor(vertical, target.side, source.side);
    const auto channels = static_cast<size_t>(source.channels);
    const size_t rowLength = static_cast<size_t>(target.side) * channels;
    std::vector<float> across(static_cast<size_t>(source.side) * rowLength); // source rows, target columns
    for (int y = 0; y < source.side; ++y) {
        float* out = &across[static_cast<size_t>(y) * rowLength];
        for (const Taps& taps : columns) {
            const float* in = source.at(taps.first, y);
            for (const float weight : taps.weights) {
                for (size_t channel = 0; channel < channels; ++channel) {
                    out[channel] += weight * in[channel];
                }
                in += channels;
            }
            out += channels;
        }
    }
    for (int y = 0; y < target.side; ++y) {
        const Taps& taps = rows[static_cast<size_t>(y)];
        float* const out = target.at(0, y);
        std::fill(out, out + rowLength, 0.0f);
        const float* in = &across[static_cast<size_t>(taps.first) * rowLength];
        for (const float weight : taps.weights) {
            for (size_t i = 0; i < rowLength; ++i) {
                out[i] += weight * in[i];
            }
            in += rowLength;
        }
    }
}

} // namespace veyra
