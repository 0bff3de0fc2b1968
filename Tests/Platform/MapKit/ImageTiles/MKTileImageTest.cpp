#include "Platform/MapKit/ImageTiles/MKTileImage.h"

#include "Tests/Support/TileServer.h"

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gtest/gtest.h>

namespace veyra {

namespace {

using test::pictureOf;

uint32_t pixelOf(const MKTileImage& image) {
    return *reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(image.surface()));
}

std::string problemOf(std::string_view bytes) {
    try {
        decodeTileImage(bytes);
        return "";
    } catch (const MKTileImageError& error) {
        return error.what();
    }
}

constexpr const char* damaged = "the picture is damaged, or larger than 4194304 pixels";

/// A PNG whose header promises that size and which ends there.
std::string headerOfPNG(uint32_t width, uint32_t height) {
    std::string bytes = pictureOf(0, 1);
    const auto put = [&](size_t at, uint32_t value) {
        for (int i = 0; i < 4; ++i) {
            bytes[at + static_cast<size_t>(i)] = static_cast<char>(value >> (24 - 8 * i));
        }
    };
    put(16, width);
    put(20, height);
    uint32_t sum = 0xffffffff; // of the header chunk
    for (size_t i = 12; i < 29; ++i) {
        sum ^= static_cast<unsigned char>(bytes[i]);
        for (int bit = 0; bit < 8; ++bit) {
            sum = sum >> 1 ^ (sum & 1 ? 0xedb88320 : 0);
        }
    }
    put(29, ~sum);
    return bytes;
}

} // namespace

TEST(MKTileImage, IsDecodedFromPNGJPEGAndWebP) {
    EXPECT_EQ(pixelOf(*decodeTileImage(pictureOf(0x123456))), 0xff123456);
    const auto jpeg = decodeTileImage(pictureOf(0x808080, 64, "jpeg"));
    EXPECT_EQ(jpeg->width(), 64);
    EXPECT_TRUE(jpeg->isOpaque());
    EXPECT_NEAR(pixelOf(*jpeg) & 255, 0x80, 2);
    const std::string bytes = pictureOf(0x808080, 64, "webp");
    ASSERT_TRUE(bytes.starts_with("RIFF"));
    EXPECT_NEAR(pixelOf(*decodeTileImage(bytes)) & 255, 0x80, 4);
}

TEST(MKTileImage, WhatIsTransparentIsPremultiplied) {
    GdkPixbuf* const pixels = gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, 8, 4, 4);
    gdk_pixbuf_fill(pixels, 0xff800080);
    gchar* bytes = nullptr;
    gsize length = 0;
    gdk_pixbuf_save_to_buffer(pixels, &bytes, &length, "png", nullptr, nullptr);
    const auto image = decodeTileImage({bytes, length});
    g_free(bytes);
    g_object_unref(pixels);
    EXPECT_FALSE(image->isOpaque());
    EXPECT_EQ(pixelOf(*image), 0x80804000);
}

TEST(MKTileImage, WhatIsNoPictureIsRefused) {
    EXPECT_EQ(problemOf(""), "there are no bytes");
    EXPECT_EQ(problemOf("<!doctype html><p>You have used up your tiles"), "the bytes are no PNG, JPEG or WebP picture");
    EXPECT_EQ(problemOf("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>"),
              "the bytes are no PNG, JPEG or WebP picture");
    EXPECT_EQ(problemOf("GIF89a"), "the bytes are no PNG, JPEG or WebP picture");
}

TEST(MKTileImage, WhatIsCutOffIsRefused) {
    const std::string bytes = pictureOf(0x123456);
    for (size_t length = 8; length + 12 < bytes.size(); length += 11) { // the last chunk is empty
        EXPECT_EQ(problemOf(bytes.substr(0, length)), damaged) << length;
    }
}

TEST(MKTileImage, WhatIsTooLargeIsRefusedBeforeItTakesMemory) {
    EXPECT_EQ(problemOf(headerOfPNG(60000, 60000)), damaged);
    EXPECT_EQ(problemOf(headerOfPNG(2048, 2049)), damaged);
    EXPECT_EQ(decodeTileImage(pictureOf(1, 2048))->width(), 2048);
}

} // namespace veyra
