#include "Platform/MapKit/MKLineMask.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace veyra {

namespace {

uint32_t blended(uint32_t under, uint32_t over, uint32_t coverage) {
    // Two channels at a time; 255 counts as 256 so that full coverage is the colour itself.
    const uint32_t weight = coverage + (coverage >> 7);
    const uint32_t redBlue = ((under & 0xff00ff) * (256 - weight) + (over & 0xff00ff) * weight) >> 8 & 0xff00ff;
    const uint32_t green = ((under & 0x00ff00) * (256 - weight) + (over & 0x00ff00) * weight) >> 8 & 0x00ff00;
    return redBlue | green;
}

// The whole number below, of one that is not below -2e6: without a call.
int floorOf(double value) {
    constexpr int more = 2'000'000;
    return static_cast<int>(value + more) - more;
}

// Whether eight pixels are not covered.
bool isEmpty(const uint8_t* coverage) {
    uint64_t eight;
    std::memcpy(&eight, coverage, sizeof eight);
    return eight == 0;
}

} // namespace

struct MKLineMask::Segment {
    double x, y;             // its beginning
    double ux, uy, length;   // direction and length
    double reach, thickness; // distance beyond which a pixel is untouched, and the greatest coverage
};

MKLineMask::MKLineMask(int side)
    : _side(side), _coverage(static_cast<size_t>(side) * static_cast<size_t>(side)), _firstRow(side), _lastRow(-1) {}

void MKLineMask::addSegment(double fromX, double fromY, double toX, double toY) {
    const double dx = toX - fromX, dy = toY - fromY;
    const double length = std::sqrt(dx * dx + dy * dy);
    const double reach = _width / 2 + 0.5;
    const Segment segment{.x = fromX,
                          .y = fromY,
                          .ux = length > 0 ? dx / length : 1,
                          .uy = length > 0 ? dy / length : 0,
                          .length = length,
                          .reach = reach,
                          .thickness = std::min(_width, 1.0)};
    // Along the longer axis, line of pixels by line of pixels, and across it as far as the segment reaches there.
    const bool rows = std::abs(dy) > std::abs(dx);
    const double slope = rows ? dx / dy : (dx != 0 ? dy / dx : 0);
    const double start = rows ? fromY : fromX, end = rows ? toY : toX;
    const double crossStart = rows ? fromX : fromY;
    const double crossLow = rows ? std::min(fromX, toX) : std::min(fromY, toY);
    const double crossHigh = rows ? std::max(fromX, toX) : std::max(fromY, toY);
    const double half = reach * std::sqrt(1 + slope * slope);
    const int first = std::max(0, floorOf(std::min(start, end) - reach));
    const int last = std::min(_side - 1, static_cast<int>(std::ceil(std::max(start, end) + reach)));
    for (int line = first; line <= last; ++line) {
        const double middle = std::clamp(crossStart + (line + 0.5 - start) * slope, crossLow, crossHigh);
        addSpan(segment, rows, line, middle - half, middle + half);
    }
}

void MKLineMask::addSpan(const Segment& segment, bool rows, int line, double low, double high) {
    const int first = std::max(0, floorOf(low)), last = std::min(_side - 1, floorOf(high));
    if (first > last) {
        return;
    }
    const int column = rows ? first : line, row = rows ? line : first;
    const double px = column + 0.5 - segment.x, py = row + 0.5 - segment.y;
    auto along = static_cast<float>(px * segment.ux + py * segment.uy);
    auto across = static_cast<float>(px * segment.uy - py * segment.ux);
    const auto alongStep = static_cast<float>(rows ? segment.ux : segment.uy);
    const auto acrossStep = static_cast<float>(rows ? segment.uy : -segment.ux);
    const auto length = static_cast<float>(segment.length), reach = static_cast<float>(segment.reach);
    const auto thickness = static_cast<float>(segment.thickness);
    uint8_t* pixel = &_coverage[static_cast<size_t>(row) * static_cast<size_t>(_side) + static_cast<size_t>(column)];
    const ptrdiff_t pixelStep = rows ? 1 : _side;
    for (int cross = first; cross <= last; ++cross, pixel += pixelStep, along += alongStep, across += acrossStep) {
        float distance = std::abs(across);
        if (along < 0 || along > length) {
            const float beyond = along < 0 ? along : along - length;
            distance = std::sqrt(distance * distance + beyond * beyond);
        }
        const float coverage = std::min(reach - distance, thickness);
        if (coverage > 0) {
            *pixel = std::max(*pixel, static_cast<uint8_t>(coverage * 255 + 0.5f));
        }
    }
    _firstRow = std::min(_firstRow, row);
    _lastRow = std::max(_lastRow, rows ? line : last);
}

void MKLineMask::paint(cairo_surface_t* surface, MKTileColor color, double opacity) {
    if (_firstRow > _lastRow) {
        return;
    }
    cairo_surface_flush(surface);
    unsigned char* const pixels = cairo_image_surface_get_data(surface);
    const auto stride = static_cast<size_t>(cairo_image_surface_get_stride(surface));
    const auto strength = static_cast<uint32_t>(std::lround(opacity * 256));
    for (int row = _firstRow; row <= _lastRow; ++row) {
        uint8_t* const coverage = &_coverage[static_cast<size_t>(row) * static_cast<size_t>(_side)];
        auto* const target = reinterpret_cast<uint32_t*>(pixels + static_cast<size_t>(row) * stride);
        for (int column = 0; column < _side; ++column) {
            if (column % 8 == 0 && column + 8 <= _side && isEmpty(coverage + column)) {
                column += 7; // most of a tile has no line
            } else if (coverage[column] != 0) {
                target[column] = blended(target[column], color, coverage[column] * strength >> 8);
                coverage[column] = 0;
            }
        }
    }
    cairo_surface_mark_dirty_rectangle(surface, 0, _firstRow, _side, _lastRow - _firstRow + 1);
    _firstRow = _side;
    _lastRow = -1;
}

} // namespace veyra
