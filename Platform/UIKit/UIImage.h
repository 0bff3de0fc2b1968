// A picture: premultiplied ARGB32 pixels (Cairo's byte order) and how many of them make a point. Immutable; any thread.
// Pictures that differ in scale alone share their pixels.
#pragma once

#include "Platform/Foundation/NSObject.h"
#include "Platform/UIKit/CGGeometry.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace veyra {

class UIImage final : public NSObject {
public:
    VEYRA_CLASS()
    using Pixels = std::vector<uint32_t>;

    /// `pixels` are width × height premultiplied pixels by rows from the top. Null when their number is not that, or
    /// one of the sides is not above 0. A scale that is not finite or not above 0 counts as 1.
    static std::shared_ptr<UIImage> imageWithPixels(int pixelWidth, int pixelHeight, Pixels pixels, double scale = 1);
    /// The picture that a PNG, JPEG, GIF (its first), still WebP or SVG file holds, upright, at scale 1; null for
    /// anything else, for what is cut off, and for pictures of more than `maximumDecodedPixels`, which take no memory.
    /// Decoding can take tens of milliseconds.
    static std::shared_ptr<UIImage> imageWithData(std::string_view data);
    /// The same on a thread of its own; `completion` is called on the main queue.
    static void decodeData(std::string data, std::function<void(std::shared_ptr<UIImage>)> completion);
    static constexpr int64_t maximumDecodedPixels = 2048 * 2048;
    /// The same pixels at another scale, by the same rule.
    std::shared_ptr<UIImage> imageWithScale(double scale) const;

    int pixelWidth() const { return _pixelWidth; }
    int pixelHeight() const { return _pixelHeight; }
    /// Pixels a point.
    double scale() const { return _scale; }
    /// The size in points.
    CGSize size() const { return {_pixelWidth / _scale, _pixelHeight / _scale}; }
    /// By rows from the top, without gaps.
    const uint32_t* pixels() const { return _pixels->data(); }

private:
    UIImage(int pixelWidth, int pixelHeight, std::shared_ptr<const Pixels> pixels, double scale);

    const int _pixelWidth, _pixelHeight;
    const std::shared_ptr<const Pixels> _pixels;
    const double _scale;
};

} // namespace veyra
