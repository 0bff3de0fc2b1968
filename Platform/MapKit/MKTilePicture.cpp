#include "Platform/MapKit/MKTilePicture.h"

#include "Platform/MapKit/MKPages.h"
#include "Platform/MapKit/MKTile.h"

#include <lz4.h>

#include <algorithm>
#include <new>

namespace veyra {

namespace {

constexpr int stride = 4 * MKTileKey::side;
constexpr int pixelBytes = stride * MKTileKey::side;
// Packed bytes that are more than that are not worth the time.
constexpr int worthwhileBytes = pixelBytes / 2;

char* bytesOf(cairo_surface_t* surface) {
    return reinterpret_cast<char*>(cairo_image_surface_get_data(surface));
}

} // namespace

MKTilePicture::Surface MKTilePicture::makeSurface() {
    auto pages = std::make_unique<MKPages>(size_t{pixelBytes}, MKPages::Filling::AtOnce);
    Surface surface(cairo_image_surface_create_for_data(pages->data(), CAIRO_FORMAT_RGB24, MKTileKey::side,
                                                        MKTileKey::side, stride),
                    &cairo_surface_destroy);
    // Whoever uses the surface in Cairo keeps it, and the pages with it.
    static const cairo_user_data_key_t key{};
    const auto release = [](void* data) { delete static_cast<MKPages*>(data); };
    if (cairo_surface_set_user_data(surface.get(), &key, pages.get(), release) != CAIRO_STATUS_SUCCESS) {
        throw std::bad_alloc();
    }
    static_cast<void>(pages.release());
    return surface;
}

MKTilePicture::Surface MKTilePicture::surface() const {
    const NSLockGuard guard(_lock);
    if (!_surface) {
        _surface = unpacked();
    }
    return _surface;
}

MKTilePicture::Surface MKTilePicture::unpacked() const {
    Surface surface = makeSurface();
    LZ4_decompress_safe(_packed.get(), bytesOf(surface.get()), static_cast<int>(_packedSize), pixelBytes);
    cairo_surface_mark_dirty(surface.get());
    return surface;
}

void MKTilePicture::pack() {
    Surface surface;
    {
        const NSLockGuard guard(_lock);
        if (_packing != Packing::NotTried) {
            return;
        }
        surface = _surface;
    }
    std::unique_ptr<char[]> packed;
    int size = 0;
    try {
        const MKPages buffer(size_t{worthwhileBytes});
        char* const bytes = reinterpret_cast<char*>(buffer.data());
        size = LZ4_compress_default(bytesOf(surface.get()), bytes, pixelBytes, worthwhileBytes);
        packed = std::make_unique_for_overwrite<char[]>(static_cast<size_t>(size));
        std::copy_n(bytes, size, packed.get());
    } catch (const std::bad_alloc&) {
        size = 0;
    }
    const NSLockGuard guard(_lock);
    _packing = size > 0 ? Packing::Done : Packing::Useless;
    _packed = std::move(packed);
    _packedSize = static_cast<size_t>(size);
}

MKTilePicture::Packing MKTilePicture::packing() const {
    const NSLockGuard guard(_lock);
    return _packing;
}

void MKTilePicture::letPixelsGo() {
    Surface surface; // goes when the lock is free again
    const NSLockGuard guard(_lock);
    if (_packing == Packing::Done) {
        surface.swap(_surface);
    }
}

bool MKTilePicture::hasPixels() const {
    const NSLockGuard guard(_lock);
    return _surface != nullptr;
}

size_t MKTilePicture::byteSize() const {
    const NSLockGuard guard(_lock);
    return _packedSize + (_surface ? size_t{pixelBytes} : 0);
}

} // namespace veyra
