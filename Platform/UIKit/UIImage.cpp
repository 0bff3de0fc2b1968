#include "Platform/UIKit/UIImage.h"

namespace veyra {

Class UIImage::classObject() {
    static ClassObject* const cls = new ClassObject("UIImage", NSObject::classObject(), {});
    return cls;
}

UIImage::UIImage(int pixelWidth, int pixelHeight, std::shared_ptr<const Pixels> pixels, double scale)
    : _pixelWidth(pixelWidth), _pixelHeight(pixelHeight), _pixels(std::move(pixels)),
      _scale(std::isfinite(scale) && scale > 0 ? scale : 1) {}

std::shared_ptr<UIImage> UIImage::imageWithPixels(int pixelWidth, int pixelHeight, Pixels pixels, double scale) {
    if (pixelWidth <= 0 || pixelHeight <= 0 ||
        pixels.size() != static_cast<size_t>(pixelWidth) * static_cast<size_t>(pixelHeight))
        return nullptr;
    return std::shared_ptr<UIImage>(
        new UIImage(pixelWidth, pixelHeight, std::make_shared<const Pixels>(std::move(pixels)), scale));
}

std::shared_ptr<UIImage> UIImage::imageWithScale(double scale) const {
    return std::shared_ptr<UIImage>(new UIImage(_pixelWidth, _pixelHeight, _pixels, scale));
}

} // namespace veyra
