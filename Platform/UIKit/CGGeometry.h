// Points, sizes and rectangles in points (1/160 inch at scale 1; x right, y down). Plain values.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace veyra {

using CGFloat = double;

struct CGPoint {
    CGFloat x = 0, y = 0;
    friend bool operator==(const CGPoint&, const CGPoint&) = default;
};

struct CGSize {
    CGFloat width = 0, height = 0;
    friend bool operator==(const CGSize&, const CGSize&) = default;
    /// True when the size has no area.
    bool isEmpty() const { return !(width > 0 && height > 0); }
};

struct CGRect {
    CGPoint origin;
    CGSize size;
    friend bool operator==(const CGRect&, const CGRect&) = default;

    CGFloat minX() const { return origin.x; }
    CGFloat minY() const { return origin.y; }
    CGFloat maxX() const { return origin.x + size.width; }
    CGFloat maxY() const { return origin.y + size.height; }
    CGPoint center() const { return {origin.x + size.width / 2, origin.y + size.height / 2}; }
    bool isEmpty() const { return size.isEmpty(); }
    bool contains(CGPoint p) const { return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY(); }
    bool intersects(const CGRect& r) const {
        return minX() < r.maxX() && r.minX() < maxX() && minY() < r.maxY() && r.minY() < maxY();
    }
    CGRect offsetBy(CGFloat dx, CGFloat dy) const { return {{origin.x + dx, origin.y + dy}, size}; }
    CGRect insetBy(CGFloat dx, CGFloat dy) const {
        return {{origin.x + dx, origin.y + dy}, {size.width - 2 * dx, size.height - 2 * dy}};
    }
};

/// The overlap of two rectangles; size 0 when there is none.
inline CGRect intersection(const CGRect& a, const CGRect& b) {
    const CGFloat x = std::max(a.minX(), b.minX()), y = std::max(a.minY(), b.minY());
    return {{x, y}, {std::max(0.0, std::min(a.maxX(), b.maxX()) - x), std::max(0.0, std::min(a.maxY(), b.maxY()) - y)}};
}

/// A rectangle in whole device pixels.
struct PixelRect {
    int x = 0, y = 0, width = 0, height = 0;
    friend bool operator==(const PixelRect&, const PixelRect&) = default;
    bool isEmpty() const { return width <= 0 || height <= 0; }
    int maxX() const { return x + width; }
    int maxY() const { return y + height; }
    int64_t area() const { return isEmpty() ? 0 : int64_t{width} * height; }
    bool contains(const PixelRect& r) const { return r.x >= x && r.y >= y && r.maxX() <= maxX() && r.maxY() <= maxY(); }
};

/// The overlap of two rectangles; size 0 when there is none.
inline PixelRect intersection(const PixelRect& a, const PixelRect& b) {
    const int x = std::max(a.x, b.x), y = std::max(a.y, b.y);
    return {x, y, std::max(0, std::min(a.maxX(), b.maxX()) - x), std::max(0, std::min(a.maxY(), b.maxY()) - y)};
}

} // namespace veyra
