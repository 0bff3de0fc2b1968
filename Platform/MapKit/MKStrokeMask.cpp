#include "Platform/MapKit/MKStrokeMask.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace veyra {

namespace {

/// A pixel of premultiplied channels, two of them at a time, times a weight of 0 to 256.
uint32_t weighted(uint32_t pixel, uint32_t weight) {
    const uint32_t even = ((pixel & 0xff00ff) * weight + 0x800080) >> 8 & 0xff00ff;
    const uint32_t odd = ((pixel >> 8 & 0xff00ff) * weight + 0x800080) & 0xff00ff00;
    return even | odd;
}

/// 0 to 255 as a weight of 0 to 256.
uint32_t weightOf(uint32_t part) {
    return part + (part >> 7);
}

uint32_t premultiplied(const MKPathStyle::Color& color, double share) {
    const double alpha = color.alpha * share;
    const auto channel = [&](double value) { return static_cast<uint32_t>(std::lround(value * alpha * 255)); };
    return channel(1) << 24 | channel(color.red) << 16 | channel(color.green) << 8 | channel(color.blue);
}

} // namespace

/// From `(x, y)` along `(dx, dy)`, in pixels of the mask.
struct MKStrokeMask::Stretch {
    float x, y, dx, dy;
    float perLength; // 1 / (dx² + dy²)
};

MKStrokeMask::MKStrokeMask(const PixelRect& area)
    : _area(area), _stride(static_cast<size_t>(area.width) + lanes),
      _coverage(_stride * static_cast<size_t>(area.height)),
      _rows(static_cast<size_t>(area.height), Extent{.first = area.width, .end = 0}), _firstRow(area.height),
      _endRow(0) {}

void MKStrokeMask::setWidth(double width) {
    _reach = static_cast<float>(width / 2 + 0.5);
    _greatest = static_cast<float>(std::min(width, 1.0));
}

void MKStrokeMask::lineTo(MKPixelPoint point) {
    const auto fromX = static_cast<float>(_at.x - _area.x), fromY = static_cast<float>(_at.y - _area.y);
    const auto toX = static_cast<float>(point.x - _area.x), toY = static_cast<float>(point.y - _area.y);
    _at = point;
    if (_wholeRows == _area.height || std::max(fromX, toX) + _reach < 0 ||
        std::min(fromX, toX) - _reach > static_cast<float>(_area.width)) {
        return;
    }
    const float dx = toX - fromX, dy = toY - fromY;
    const float squared = dx * dx + dy * dy;
    const Stretch stretch{fromX, fromY, dx, dy, squared > 0 ? 1 / squared : 0};
    const int first = std::max(0, static_cast<int>(std::floor(std::min(fromY, toY) - _reach)));
    const int end = std::min(_area.height, static_cast<int>(std::ceil(std::max(fromY, toY) + _reach)));
    for (int row = first; row < end; ++row) {
        // The part of the stretch that is near enough to the row for its pixels.
        const float middle = static_cast<float>(row) + 0.5F;
        float low = 0, high = 1;
        if (dy != 0) {
            const float a = (middle - _reach - fromY) / dy, b = (middle + _reach - fromY) / dy;
            low = std::clamp(std::min(a, b), 0.0F, 1.0F);
            high = std::clamp(std::max(a, b), 0.0F, 1.0F);
        }
        const float xLow = fromX + dx * low, xHigh = fromX + dx * high;
        addRow(stretch, row, std::min(xLow, xHigh) - _reach, std::max(xLow, xHigh) + _reach);
    }
}

/// What pixels side by side get from a stretch, the first of them at (px, py) from its beginning: 0 to 255.
std::array<int, MKStrokeMask::lanes> MKStrokeMask::coverageAt(const Stretch& stretch, float px, float py) const {
    const float dx = stretch.dx, dy = stretch.dy, perLength = stretch.perLength, reach = _reach, greatest = _greatest;
    std::array<float, lanes> squares;
    for (int lane = 0; lane < lanes; ++lane) {
        const float x = px + static_cast<float>(lane);
        const float along = std::min(std::max((x * dx + py * dy) * perLength, 0.0F), 1.0F);
        const float awayX = x - dx * along, awayY = py - dy * along;
        squares[static_cast<size_t>(lane)] = awayX * awayX + awayY * awayY;
    }
    std::array<int, lanes> values;
    for (size_t lane = 0; lane < lanes; ++lane) {
        const float share = std::max(std::min(reach - std::sqrt(squares[lane]), greatest), 0.0F);
        values[lane] = static_cast<int>(share * 255 + 0.5F);
    }
    return values;
}

// Some columns at a time, without a branch: those before and after the stretch's are too far away to get anything.
void MKStrokeMask::addRow(const Stretch& stretch, int row, float from, float to) {
    const int first = std::max(0, static_cast<int>(std::floor(from)));
    const int end = std::min(_area.width, static_cast<int>(std::ceil(to)));
    Extent& extent = _rows[static_cast<size_t>(row)];
    if (first >= end || extent.whole == _area.width) {
        return;
    }
    uint8_t* const coverage = &_coverage[static_cast<size_t>(row) * _stride];
    const float py = static_cast<float>(row) + 0.5F - stretch.y;
    const auto whole = static_cast<uint8_t>(_greatest * 255 + 0.5F);
    for (int column = first; column < end; column += lanes) {
        const auto values = coverageAt(stretch, static_cast<float>(column) + 0.5F - stretch.x, py);
        uint8_t* const covered = coverage + column;
        int became = 0;
        for (size_t lane = 0; lane < lanes; ++lane) {
            const auto value = static_cast<uint8_t>(values[lane]);
            became += static_cast<int>(covered[lane] != whole) & static_cast<int>(value == whole);
            covered[lane] = std::max(covered[lane], value);
        }
        extent.whole += became;
    }
    _wholeRows += extent.whole == _area.width;
    extent.first = std::min(extent.first, first);
    extent.end = std::max(extent.end, end);
    _firstRow = std::min(_firstRow, row);
    _endRow = std::max(_endRow, row + 1);
}

void MKStrokeMask::paint(cairo_surface_t* surface, int left, int top, const MKPathStyle::Color& color, double share) {
    cairo_surface_flush(surface);
    unsigned char* const pixels = cairo_image_surface_get_data(surface);
    const auto stride = static_cast<ptrdiff_t>(cairo_image_surface_get_stride(surface));
    const uint32_t source = premultiplied(color, share);
    const bool isOpaque = source >> 24 == 255;
    for (int row = _firstRow; row < _endRow; ++row) {
        Extent& extent = _rows[static_cast<size_t>(row)];
        uint8_t* const coverage = &_coverage[static_cast<size_t>(row) * _stride];
        auto* const target = reinterpret_cast<uint32_t*>(pixels + (row + _area.y - top) * stride) + (_area.x - left);
        for (int column = extent.first; column < extent.end; ++column) {
            const uint32_t covered = coverage[column];
            if (covered == 255 && isOpaque) {
                target[column] = source;
            } else if (covered != 0) {
                const uint32_t over = weighted(source, weightOf(covered));
                target[column] = over + weighted(target[column], 256 - weightOf(over >> 24));
            }
        }
        if (extent.first < extent.end) {
            std::fill(coverage + extent.first, coverage + extent.end, uint8_t{0});
        }
        extent = {.first = _area.width, .end = 0};
    }
    if (_firstRow < _endRow) {
        cairo_surface_mark_dirty_rectangle(surface, _area.x - left, _area.y - top + _firstRow, _area.width,
                                           _endRow - _firstRow);
    }
    _firstRow = _area.height;
    _endRow = 0;
    _wholeRows = 0;
}

} // namespace veyra
