#include "Platform/MapKit/MKTilePicture.h"

#include "Platform/MapKit/MKPages.h"
#include "Platform/MapKit/MKTile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <span>
#include <thread>
#include <vector>

namespace veyra {

namespace {

constexpr size_t pixelCount = size_t{MKTileKey::side} * MKTileKey::side;

std::span<uint32_t> pixelsOf(const MKTilePicture::Surface& surface) {
    return {reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(surface.get())), pixelCount};
}

std::vector<uint32_t> copyOf(const MKTilePicture& picture) {
    const auto surface = picture.surface();
    const auto pixels = pixelsOf(surface);
    return {pixels.begin(), pixels.end()};
}

// Land and sea with a soft shore.
MKTilePicture::Surface flatSurface() {
    auto surface = MKTilePicture::makeSurface();
    const auto pixels = pixelsOf(surface);
    for (size_t i = 0; i < pixels.size(); ++i) {
        const size_t x = i % MKTileKey::side, y = i / MKTileKey::side;
        pixels[i] = x + y < 500 ? 0xc0d8e8 : x + y > 503 ? 0xf4f0e4 : static_cast<uint32_t>(0xd0e0e0 + x + y);
    }
    return surface;
}

MKTilePicture::Surface noisySurface() {
    auto surface = MKTilePicture::makeSurface();
    std::mt19937 random(3);
    std::ranges::generate(pixelsOf(surface), random);
    return surface;
}

} // namespace

TEST(MKTilePicture, IsTheSameOnceUnpacked) {
    MKTilePicture picture(flatSurface());
    const auto before = copyOf(picture);
    picture.pack();
    EXPECT_EQ(picture.packing(), MKTilePicture::Packing::Done);
    EXPECT_TRUE(picture.hasPixels());
    picture.letPixelsGo();
    EXPECT_FALSE(picture.hasPixels());
    EXPECT_EQ(copyOf(picture), before);
    EXPECT_TRUE(picture.hasPixels());
}

TEST(MKTilePicture, TakesATenthOfItsMemoryPacked) {
    const size_t before = MKPages::heldBytes();
    MKTilePicture picture(flatSurface());
    EXPECT_EQ(MKPages::heldBytes() - before, pixelCount * 4);
    EXPECT_EQ(picture.byteSize(), pixelCount * 4);
    picture.pack();
    picture.letPixelsGo();
    EXPECT_EQ(MKPages::heldBytes(), before);
    EXPECT_LT(picture.byteSize(), pixelCount * 4 / 10);
    EXPECT_GT(picture.byteSize(), 0u);
}

TEST(MKTilePicture, KeepsThePixelsOfWhatIsHardlySmallerPacked) {
    MKTilePicture picture(noisySurface());
    const auto before = copyOf(picture);
    picture.pack();
    EXPECT_EQ(picture.packing(), MKTilePicture::Packing::Useless);
    picture.letPixelsGo();
    EXPECT_TRUE(picture.hasPixels());
    EXPECT_EQ(picture.byteSize(), pixelCount * 4);
    EXPECT_EQ(copyOf(picture), before);
}

TEST(MKTilePicture, KeepsThePixelsThatAreNotPacked) {
    MKTilePicture picture(flatSurface());
    picture.letPixelsGo();
    EXPECT_TRUE(picture.hasPixels());
    EXPECT_EQ(picture.packing(), MKTilePicture::Packing::NotTried);
}

TEST(MKTilePicture, LeavesPixelsToThoseThatHoldThem) {
    MKTilePicture picture(flatSurface());
    const auto before = copyOf(picture);
    const auto held = picture.surface();
    picture.pack();
    picture.letPixelsGo();
    EXPECT_FALSE(picture.hasPixels());
    EXPECT_TRUE(std::ranges::equal(pixelsOf(held), before));
}

TEST(MKTilePicture, IsTheSameToAThreadThatReadsItWhileAnotherPacksIt) {
    MKTilePicture picture(flatSurface());
    const auto before = copyOf(picture);
    std::jthread packer([&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            picture.pack();
            picture.letPixelsGo();
        }
    });
    for (int i = 0; i < 200; ++i) {
        const auto surface = picture.surface();
        ASSERT_TRUE(std::ranges::equal(pixelsOf(surface), before));
    }
}

} // namespace veyra
