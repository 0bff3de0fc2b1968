#include "Platform/MapKit/MKRingMask.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <new>

namespace veyra {

namespace {

constexpr int samples = 8; // of a pixel, along each axis
// Rows of pixels that are filled at a time: their samples stay in the processor's cache.
constexpr int band = 64;
// Edges that cross a row of pixels, on average, beyond which it is worth it.
constexpr double manyEdges = 64;
// Edges that are added without asking whether they are still wanted.
constexpr size_t checkEvery = 16384;

/// Each bit becomes the parity of those up to it; `isInside` is that of the words before.
uint64_t parities(uint64_t word, bool& isInside) {
    for (const int shift : {1, 2, 4, 8, 16, 32}) {
        word ^= word << shift;
    }
    word ^= isInside ? ~uint64_t{0} : 0;
    isInside = word >> 63 != 0;
    return word;
}

} // namespace

MKRingMask::MKRingMask(const PixelRect& area, const MKDrawingTicket& ticket)
    : _area(area), _ticket(ticket), _words((static_cast<size_t>(area.width) * samples + 63) / 64),
      _bits(_words * samples * band) {}

bool MKRingMask::isWorthIt(std::span<const MKPixelPoint> ring, const PixelRect& area) {
    double height = 0;
    for (size_t i = 0; i < ring.size(); ++i) {
        height += std::abs(ring[i].y - ring[i > 0 ? i - 1 : ring.size() - 1].y);
    }
    return height > manyEdges * area.height;
}

MKRingMask::Surface MKRingMask::coverageOf(std::span<const MKPixelPoint> ring) {
    Surface surface(cairo_image_surface_create(CAIRO_FORMAT_A8, _area.width, _area.height), cairo_surface_destroy);
    unsigned char* const pixels = cairo_image_surface_get_data(surface.get());
    if (!pixels) {
        throw std::bad_alloc();
    }
    const auto stride = static_cast<size_t>(cairo_image_surface_get_stride(surface.get()));
    for (int top = 0; top < _area.height; top += band) {
        const int rows = std::min(band, _area.height - top);
        for (size_t i = 0; i < ring.size(); ++i) {
            if (i % checkEvery == 0) {
                _ticket.check();
            }
            addEdge(ring[i > 0 ? i - 1 : ring.size() - 1], ring[i], top, rows);
        }
        writeRows(pixels + static_cast<size_t>(top) * stride, stride, rows);
    }
    cairo_surface_mark_dirty(surface.get());
    return surface;
}

// At each row of samples that the edge crosses, the samples to the right of it change sides.
void MKRingMask::addEdge(MKPixelPoint from, MKPixelPoint to, int top, int rows) {
    if (from.y > to.y) {
        std::swap(from, to);
    }
    const double origin = _area.y + top, low = (from.y - origin) * samples, high = (to.y - origin) * samples;
    const int rowsOfSamples = rows * samples;
    if (high <= 0 || low >= rowsOfSamples || low == high) {
        return;
    }
    const int first = low <= 0 ? 0 : static_cast<int>(std::ceil(low - 0.5));
    const int end = high >= rowsOfSamples ? rowsOfSamples : static_cast<int>(std::ceil(high - 0.5));
    const double slope = (to.x - from.x) / (to.y - from.y);
    const double start = (from.x - _area.x) * samples;
    const double last = static_cast<double>(_area.width) * samples;
    for (int row = first; row < end; ++row) {
        const double x = start + (row + 0.5 - low) * slope;
        if (x < last - 0.5) {
            const auto column = static_cast<size_t>(std::max(0.0, std::ceil(x - 0.5)));
            _bits[static_cast<size_t>(row) * _words + column / 64] ^= uint64_t{1} << column % 64;
        }
    }
}

void MKRingMask::writeRows(unsigned char* pixels, size_t stride, int rows) {
    for (int row = 0; row < rows; ++row) {
        unsigned char* const target = pixels + static_cast<size_t>(row) * stride;
        uint64_t* const bits = &_bits[static_cast<size_t>(row) * samples * _words];
        for (int line = 0; line < samples; ++line) {
            bool isInside = false;
            for (size_t word = 0; word < _words; ++word) {
                uint64_t& part = bits[static_cast<size_t>(line) * _words + word];
                part = parities(part, isInside);
            }
        }
        for (int column = 0; column < _area.width; ++column) {
            const auto place = static_cast<size_t>(column);
            int inside = 0;
            for (size_t line = 0; line < samples; ++line) {
                const uint64_t part = bits[line * _words + place / samples];
                inside += std::popcount(part >> place % samples * samples & 0xff);
            }
            target[column] = static_cast<unsigned char>((inside * 255 + samples * samples / 2) / (samples * samples));
        }
        std::fill_n(bits, samples * _words, 0);
    }
}

} // namespace veyra
