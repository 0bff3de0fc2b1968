#include "Platform/MapKit/MKResampler.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace veyra {

namespace {

// Four at a time: compilers do not find that out by themselves at every level of optimisation.
using Four = float __attribute__((vector_size(16)));

Four fourAt(const float* values) {
    Four four;
    std::memcpy(&four, values, sizeof four);
    return four;
}

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

} // namespace

double MKResampledAxis::reach(double step) {
    return 2 * std::max(1.0, step) + 1;
}

template <int Channels>
MKResampler<Channels>::MKResampler(const MKResampledAxis& across, const MKResampledAxis& down)
    : _across(across), _down(down), _columns(tapsFor(across)), _rows(tapsFor(down)) {}

// The source pixels that make up each target pixel.
template <int Channels>
std::vector<typename MKResampler<Channels>::Taps> MKResampler<Channels>::tapsFor(const MKResampledAxis& axis) {
    const Filter filter = filterFor(axis.step);
    const double widened = std::max(1.0, axis.step), reach = 2 * widened;
    std::vector<Taps> all(static_cast<size_t>(axis.targetSide));
    for (int i = 0; i < axis.targetSide; ++i) {
        const double middle = (i + 0.5) * axis.step + axis.start - 0.5;
        Taps& taps = all[static_cast<size_t>(i)];
        taps.first = std::clamp(static_cast<int>(std::ceil(middle - reach)), 0, axis.sourceSide - 1);
        const int last = std::clamp(static_cast<int>(std::floor(middle + reach)), taps.first, axis.sourceSide - 1);
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

template <int Channels>
void MKResampler<Channels>::scaleRow(const float* row, float* scaled) const {
    for (const Taps& taps : _columns) {
        const float* in = row + static_cast<size_t>(taps.first) * Channels;
        Four sums[Channels / 4] = {};
        for (const float weight : taps.weights) {
            for (Four& sum : sums) {
                sum += weight * fourAt(in);
                in += 4;
            }
        }
        std::memcpy(scaled, sums, sizeof sums);
        scaled += Channels;
    }
}

template <int Channels>
void MKResampler<Channels>::run(const Source& source, const Target& target) const {
    const size_t rowLength = static_cast<size_t>(_across.targetSide) * Channels;
    // As many rows as one row of the target looks at, each at its number modulo theirs.
    size_t kept = 1;
    for (const Taps& taps : _rows) {
        kept = std::max(kept, taps.weights.size());
    }
    std::vector<float> sourceRow(static_cast<size_t>(_across.sourceSide) * Channels), rows(kept * rowLength),
        sums(rowLength);
    std::vector<const float*> looked(kept); // the rows that make up one of the target
    int next = 0;                           // the first row of the source that was not scaled
    for (int y = 0; y < _down.targetSide; ++y) {
        const Taps& taps = _rows[static_cast<size_t>(y)];
        const int end = taps.first + static_cast<int>(taps.weights.size());
        for (next = std::max(next, taps.first); next < end; ++next) {
            source(next, sourceRow.data());
            scaleRow(sourceRow.data(), &rows[static_cast<size_t>(next) % kept * rowLength]);
        }
        for (size_t k = 0; k < taps.weights.size(); ++k) {
            looked[k] = &rows[(static_cast<size_t>(taps.first) + k) % kept * rowLength];
        }
        for (size_t i = 0; i < rowLength; i += 4) {
            Four sum = {};
            for (size_t k = 0; k < taps.weights.size(); ++k) {
                sum += taps.weights[k] * fourAt(looked[k] + i);
            }
            std::memcpy(&sums[i], &sum, sizeof sum);
        }
        target(y, sums.data());
    }
}

template class MKResampler<4>;
template class MKResampler<8>;

} // namespace veyra
