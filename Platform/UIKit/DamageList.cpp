#include "Platform/UIKit/DamageList.h"

#include <cstddef>
#include <tuple>

namespace veyra {

namespace {

PixelRect hull(const PixelRect& a, const PixelRect& b) {
    const int x = std::min(a.x, b.x), y = std::min(a.y, b.y);
    return {x, y, std::max(a.maxX(), b.maxX()) - x, std::max(a.maxY(), b.maxY()) - y};
}

/// Pixels in the hull of two rectangles that are in neither.
int64_t waste(const PixelRect& a, const PixelRect& b) {
    return hull(a, b).area() - (a.area() + b.area() - intersection(a, b).area());
}

/// Drawing up to 64 × 64 pixels, or an eighth, more than needed is cheaper than another walk over the views.
bool worthMerging(const PixelRect& a, const PixelRect& b) {
    return waste(a, b) <= std::max<int64_t>(64 * 64, hull(a, b).area() / 8);
}

/// The parts of `rect` outside `hole`, which it overlaps.
void subtract(const PixelRect& rect, const PixelRect& hole, std::vector<PixelRect>& pieces) {
    const PixelRect common = intersection(rect, hole);
    const PixelRect parts[] = {{rect.x, rect.y, rect.width, common.y - rect.y},
                               {rect.x, common.maxY(), rect.width, rect.maxY() - common.maxY()},
                               {rect.x, common.y, common.x - rect.x, common.height},
                               {common.maxX(), common.y, rect.maxX() - common.maxX(), common.height}};
    for (const PixelRect& part : parts)
        if (!part.isEmpty())
            pieces.push_back(part);
}

} // namespace

void DamageList::add(const PixelRect& rect) {
    if (rect.isEmpty())
        return;
    PixelRect grown = rect;
    for (size_t i = 0; i < _rects.size();) {
        if (_rects[i].contains(grown))
            return;
        if (!worthMerging(_rects[i], grown)) {
            ++i;
            continue;
        }
        grown = hull(_rects[i], grown);
        _rects.erase(_rects.begin() + static_cast<std::ptrdiff_t>(i));
        i = 0;
    }
    addDisjoint(grown);
    while (_rects.size() > maximumCount)
        mergeClosest();
}

/// Adds the parts of the rectangle that lie in no other. They are not merged again: two parts on both sides of another
/// rectangle would become the whole that they were cut from.
void DamageList::addDisjoint(const PixelRect& rect) {
    std::vector<PixelRect> pieces{rect}, cut;
    for (const PixelRect& other : _rects) {
        cut.clear();
        for (const PixelRect& piece : pieces) {
            if (intersection(other, piece).isEmpty())
                cut.push_back(piece);
            else
                subtract(piece, other, cut);
        }
        pieces.swap(cut);
    }
    _rects.insert(_rects.end(), pieces.begin(), pieces.end());
}

void DamageList::mergeClosest() {
    size_t first = 0, second = 1;
    for (size_t i = 0; i < _rects.size(); ++i)
        for (size_t j = i + 1; j < _rects.size(); ++j)
            if (waste(_rects[i], _rects[j]) < waste(_rects[first], _rects[second]))
                first = i, second = j;
    PixelRect merged = hull(_rects[first], _rects[second]);
    // Everything that the grown rectangle meets goes into it, so that the rest stays disjoint.
    for (size_t i = 0; i < _rects.size();) {
        if (intersection(_rects[i], merged).isEmpty()) {
            ++i;
            continue;
        }
        merged = hull(_rects[i], merged);
        _rects.erase(_rects.begin() + static_cast<std::ptrdiff_t>(i));
        i = 0;
    }
    _rects.push_back(merged);
}

std::vector<PixelRect> DamageList::take() {
    std::vector<PixelRect> rects;
    rects.swap(_rects);
    std::sort(rects.begin(), rects.end(),
              [](const PixelRect& a, const PixelRect& b) { return std::tie(a.y, a.x) < std::tie(b.y, b.x); });
    return rects;
}

} // namespace veyra
