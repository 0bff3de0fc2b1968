#include "Basemap/Maker/Raster.h"

#include <cairo.h>
#include <gdk-pixbuf/gdk-pixbuf.h>

#include <cstdio>
#include <memory>
#include <stdexcept>

namespace veyra::basemapMaker {

namespace {

struct Unref {
    void operator()(GdkPixbuf* pixbuf) const { g_object_unref(pixbuf); }
};
using Pixbuf = std::unique_ptr<GdkPixbuf, Unref>;

[[noreturn]] void fail(const std::string& path, GError* error) {
    const std::string message = path + ": " + (error != nullptr ? error->message : "cannot be read");
    g_clear_error(&error);
    throw std::runtime_error(message);
}

void addRings(cairo_t* cairo, const std::vector<PositionRing>& rings,
              const std::function<PixelPlace(Position)>& place) {
    for (const PositionRing& ring : rings) {
        for (const Position& position : ring.positions) {
            const PixelPlace pixel = place(position);
            cairo_line_to(cairo, pixel.x, pixel.y);
        }
        cairo_close_path(cairo);
        cairo_new_sub_path(cairo);
    }
}

} // namespace

Raster readPicture(const std::string& path) {
    GError* error = nullptr;
    const Pixbuf pixbuf(gdk_pixbuf_new_from_file(path.c_str(), &error));
    if (!pixbuf) {
        fail(path, error);
    }
    Raster picture(gdk_pixbuf_get_width(pixbuf.get()), gdk_pixbuf_get_height(pixbuf.get()), 3);
    const int channels = gdk_pixbuf_get_n_channels(pixbuf.get());
    const int stride = gdk_pixbuf_get_rowstride(pixbuf.get());
    const guint8* bytes = gdk_pixbuf_read_pixels(pixbuf.get());
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const guint8* from = bytes + static_cast<std::ptrdiff_t>(y) * stride + x * channels;
            std::copy(from, from + 3, picture.at(x, y));
        }
    }
    return picture;
}

Raster readTiledPicture(const std::string& folder, int columns, int rows) {
    Raster whole;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            char name[64];
            std::snprintf(name, sizeof name, "/%06d/%06d_%06d.jpg", row, row, column);
            const Raster tile = readPicture(folder + name);
            if (whole.pixels.empty()) {
                whole = Raster(tile.width * columns, tile.height * rows, 1);
            }
            if (tile.width * columns != whole.width || tile.height * rows != whole.height) {
                throw std::runtime_error(folder + name + ": has another size than the first tile");
            }
            for (int y = 0; y < tile.height; ++y) {
                for (int x = 0; x < tile.width; ++x) {
                    *whole.at(column * tile.width + x, row * tile.height + y) = *tile.at(x, y);
                }
            }
        }
    }
    return whole;
}

Raster landMask(const LandAndLakes& shapes, int width, int height, const std::function<PixelPlace(Position)>& place) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_A8, width, height);
    cairo_t* cairo = cairo_create(surface);
    addRings(cairo, shapes.land, place);
    cairo_fill(cairo);
    cairo_set_operator(cairo, CAIRO_OPERATOR_CLEAR);
    // Islands in lakes are holes, which run the other way round.
    addRings(cairo, shapes.lakes, place);
    cairo_fill(cairo);
    if (cairo_status(cairo) != CAIRO_STATUS_SUCCESS) {
        throw std::runtime_error("the mask of the land cannot be drawn");
    }
    cairo_destroy(cairo);
    cairo_surface_flush(surface);
    Raster mask(width, height, 1);
    const int stride = cairo_image_surface_get_stride(surface);
    const unsigned char* bytes = cairo_image_surface_get_data(surface);
    for (int y = 0; y < height; ++y) {
        std::copy_n(bytes + static_cast<std::ptrdiff_t>(y) * stride, width, mask.at(0, y));
    }
    cairo_surface_destroy(surface);
    return mask;
}

Bytes jpegOf(const Raster& picture, int x, int y, int side, int quality) {
    const Pixbuf pixbuf(gdk_pixbuf_new_from_data(picture.at(x, y), GDK_COLORSPACE_RGB, FALSE, 8, side, side,
                                                 picture.width * 3, nullptr, nullptr));
    gchar* bytes = nullptr;
    gsize length = 0;
    GError* error = nullptr;
    if (!gdk_pixbuf_save_to_buffer(pixbuf.get(), &bytes, &length, "jpeg", &error, "quality",
                                   std::to_string(quality).c_str(), nullptr)) {
        fail("a tile", error);
    }
    Bytes out(bytes, bytes + length);
    g_free(bytes);
    return out;
}

Raster halved(const Raster& picture) {
    Raster half(picture.width / 2, picture.height / 2, picture.channels);
    for (int y = 0; y < half.height; ++y) {
        for (int x = 0; x < half.width; ++x) {
            for (int channel = 0; channel < half.channels; ++channel) {
                const int sum = picture.at(2 * x, 2 * y)[channel] + picture.at(2 * x + 1, 2 * y)[channel] +
                                picture.at(2 * x, 2 * y + 1)[channel] + picture.at(2 * x + 1, 2 * y + 1)[channel];
                half.at(x, y)[channel] = static_cast<std::uint8_t>((sum + 2) / 4);
            }
        }
    }
    return half;
}

} // namespace veyra::basemapMaker
