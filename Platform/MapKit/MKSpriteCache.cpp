#include "Platform/MapKit/MKSpriteCache.h"

#include "Platform/MapKit/MKPinArtwork.h"

#include <cairo.h>

#include <cmath>

namespace veyra {

namespace {

constexpr double longestSide = 4096; // device pixels

cairo_surface_t* surfaceOf(const UIImage& image) {
    // Cairo reads a source only.
    auto* const bytes = reinterpret_cast<unsigned char*>(const_cast<uint32_t*>(image.pixels()));
    return cairo_image_surface_create_for_data(bytes, CAIRO_FORMAT_ARGB32, image.pixelWidth(), image.pixelHeight(),
                                               image.pixelWidth() * 4);
}

std::shared_ptr<const MKSprite> resampled(const std::shared_ptr<UIImage>& image, int width, int height) {
    struct Owner {
        std::shared_ptr<UIImage> image; // so that its address stays taken
        std::vector<uint32_t> pixels;
    };
    const auto owner = std::make_shared<Owner>(
        Owner{image, std::vector<uint32_t>(static_cast<size_t>(width) * static_cast<size_t>(height))});
    cairo_surface_t* const target = cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(owner->pixels.data()), CAIRO_FORMAT_ARGB32, width, height, width * 4);
    cairo_surface_t* const source = surfaceOf(*image);
    cairo_t* const cairo = cairo_create(target);
    cairo_scale(cairo, static_cast<double>(width) / image->pixelWidth(),
                static_cast<double>(height) / image->pixelHeight());
    cairo_set_source_surface(cairo, source, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cairo), CAIRO_FILTER_GOOD);
    cairo_pattern_set_extend(cairo_get_source(cairo), CAIRO_EXTEND_PAD);
    cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
    cairo_paint(cairo);
    cairo_destroy(cairo);
    cairo_surface_destroy(source);
    cairo_surface_finish(target);
    cairo_surface_destroy(target);
    return std::make_shared<MKSprite>(width, height, owner->pixels.data(), owner);
}

} // namespace

void MKSpriteCache::setDeviceScale(double deviceScale) {
    if (deviceScale != _deviceScale) {
        _deviceScale = deviceScale;
        _images.clear();
        _pins = {};
        _dot = nullptr;
    }
}

std::shared_ptr<const MKSprite> MKSpriteCache::spriteForImage(const std::shared_ptr<UIImage>& image) {
    const CGSize size = image->size();
    const double width = std::max(1.0, std::round(size.width * _deviceScale));
    const double height = std::max(1.0, std::round(size.height * _deviceScale));
    if (!(width <= longestSide && height <= longestSide)) {
        return nullptr;
    }
    auto& known = _images[image.get()];
    if (auto sprite = known.lock()) {
        return sprite;
    }
    const bool isExact = width == image->pixelWidth() && height == image->pixelHeight();
    std::shared_ptr<const MKSprite> sprite =
        isExact ? std::make_shared<MKSprite>(image->pixelWidth(), image->pixelHeight(), image->pixels(), image)
                : resampled(image, static_cast<int>(width), static_cast<int>(height));
    known = sprite;
    if (_images.size() > 2 * _imagesAfterSweep + 64) {
        std::erase_if(_images, [](const auto& entry) { return entry.second.expired(); });
        _imagesAfterSweep = _images.size();
    }
    return sprite;
}

const MKSprite* MKSpriteCache::spriteForPin(MKPinAnnotationColor color) {
    auto& sprite = _pins.at(color);
    if (!sprite) {
        sprite = MKPinArtwork::pin(color, _deviceScale);
    }
    return sprite.get();
}

const MKSprite* MKSpriteCache::spriteForLocationDot() {
    if (!_dot) {
        _dot = MKPinArtwork::locationDot(_deviceScale);
    }
    return _dot.get();
}

} // namespace veyra
