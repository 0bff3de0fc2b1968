#include "Platform/MapKit/MKPictureTiles.h"

#include "Platform/MapKit/Basemap/BasemapFile.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>

namespace veyra {

namespace {

struct Unref {
    void operator()(GdkPixbufLoader* loader) const { g_object_unref(loader); }
};

// The picture of a JPEG file that has `side` pixels square, or what is wrong with it.
std::string decode(std::span<const std::byte> file, int side, MKPicture& picture) {
    GError* error = nullptr;
    const std::unique_ptr<GdkPixbufLoader, Unref> loader(gdk_pixbuf_loader_new_with_type("jpeg", &error));
    const auto failure = [&] {
        const std::string message = error != nullptr ? error->message : "no picture";
        g_clear_error(&error);
        return message;
    };
    if (!loader) {
        return failure();
    }
    // A loader must be closed before it goes, whatever it has made of the bytes.
    const bool written =
        gdk_pixbuf_loader_write(loader.get(), reinterpret_cast<const guchar*>(file.data()), file.size(), &error);
    const bool closed = gdk_pixbuf_loader_close(loader.get(), written ? &error : nullptr);
    if (!written || !closed) {
        return failure();
    }
    GdkPixbuf* const pixbuf = gdk_pixbuf_loader_get_pixbuf(loader.get());
    if (pixbuf == nullptr || gdk_pixbuf_get_width(pixbuf) != side || gdk_pixbuf_get_height(pixbuf) != side ||
        gdk_pixbuf_get_n_channels(pixbuf) != 3) {
        return "not a picture of the right size";
    }
    const guint8* const rows = gdk_pixbuf_read_pixels(pixbuf);
    const auto stride = static_cast<size_t>(gdk_pixbuf_get_rowstride(pixbuf));
    const auto length = static_cast<size_t>(side) * 3;
    picture.resize(length * static_cast<size_t>(side));
    for (size_t row = 0; row < static_cast<size_t>(side); ++row) {
        std::copy_n(rows + row * stride, length, &picture[row * length]);
    }
    return {};
}

} // namespace

std::shared_ptr<const MKPicture> MKPictureTiles::tile(const BasemapImagery& imagery, int level, int column, int row) {
    {
        const NSLockGuard guard(_lock);
        const auto found = std::find_if(_entries.begin(), _entries.end(), [&](const Entry& entry) {
            return entry.level == level && entry.column == column && entry.row == row;
        });
        if (found != _entries.end()) {
            _entries.splice(_entries.begin(), _entries, found);
            return found->picture;
        }
    }
    auto picture = std::make_shared<MKPicture>();
    if (const std::string fault = decode(imagery.tile(level, column, row), imagery.tileSide(), *picture);
        !fault.empty()) {
        throw BasemapError(imagery.tileName(level, column, row) + ": " + fault);
    }
    const NSLockGuard guard(_lock);
    _entries.push_front({level, column, row, picture});
    _byteSize += picture->size();
    while (_byteSize > _byteLimit && _entries.size() > 1) {
        _byteSize -= _entries.back().picture->size();
        _entries.pop_back();
    }
    return picture;
}

} // namespace veyra
