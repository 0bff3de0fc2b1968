// Sprites drawn from the front to the back look as if they had been drawn from the back to the front.
#include "Platform/MapKit/MKSpriteTile.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace veyra {

namespace {

constexpr int side = MKSpriteTile::side;

std::shared_ptr<const MKSprite> spriteOf(int width, int height, std::vector<uint32_t> pixels) {
    const auto owner = std::make_shared<std::vector<uint32_t>>(std::move(pixels));
    return std::make_shared<MKSprite>(width, height, owner->data(), owner);
}

std::shared_ptr<const MKSprite> filled(int width, int height, uint32_t color) {
    return spriteOf(width, height,
                    std::vector<uint32_t>(static_cast<size_t>(width) * static_cast<size_t>(height), color));
}

/// Clear, translucent and opaque pixels in any mixture.
std::shared_ptr<const MKSprite> mixed(int width, int height, std::mt19937& random) {
    std::vector<uint32_t> pixels;
    for (int i = 0; i < width * height; ++i) {
        const uint32_t alpha = std::array<uint32_t, 4>{0, 90, 255, 255}[random() % 4];
        const auto channel = [&] { return alpha == 0 ? 0 : static_cast<uint32_t>(random() % (alpha + 1)); };
        pixels.push_back(alpha << 24 | channel() << 16 | channel() << 8 | channel());
    }
    return spriteOf(width, height, pixels);
}

struct Placed {
    std::shared_ptr<const MKSprite> sprite;
    int x, y;
};

/// The same picture by the plain way, in numbers of any precision.
std::vector<std::array<double, 4>> drawnBackToFront(const std::vector<Placed>& fromTheFront) {
    std::vector<std::array<double, 4>> picture(size_t{side} * side);
    for (auto placed = fromTheFront.rbegin(); placed != fromTheFront.rend(); ++placed) {
        for (int y = 0; y < placed->sprite->height(); ++y) {
            for (int x = 0; x < placed->sprite->width(); ++x) {
                const int tileX = placed->x + x, tileY = placed->y + y;
                if (tileX < 0 || tileY < 0 || tileX >= side || tileY >= side) {
                    continue;
                }
                const uint32_t source = placed->sprite->row(y)[x];
                auto& target = picture[static_cast<size_t>(tileY * side + tileX)];
                for (unsigned channel = 0; channel < 4; ++channel) {
                    target[channel] = (source >> 8 * channel & 255) + target[channel] * (255 - (source >> 24)) / 255.0;
                }
            }
        }
    }
    return picture;
}

void expectSame(const MKSpriteTile& tile, const std::vector<Placed>& fromTheFront) {
    const auto expected = drawnBackToFront(fromTheFront);
    for (size_t i = 0; i < expected.size(); ++i) {
        for (unsigned channel = 0; channel < 4; ++channel) {
            const double drawn = tile.pixels()[i] >> 8 * channel & 255;
            ASSERT_NEAR(drawn, expected[i][channel], 3) << "at " << i % side << ", " << i / side;
        }
    }
}

} // namespace

TEST(MKSpriteTile, IsClearAtFirst) {
    MKSpriteTile tile;
    tile.clear();
    EXPECT_TRUE(tile.isClear());
    tile.drawBehind(*filled(4, 4, 0xff123456), -4, 10);
    tile.drawBehind(*filled(4, 4, 0xff123456), 10, side);
    EXPECT_TRUE(tile.isClear());
}

TEST(MKSpriteTile, LooksLikeSpritesDrawnFromTheBackToTheFront) {
    std::mt19937 random(7);
    for (const int width : {1, 5, 32, 63, 64, 65, 150, 300}) {
        std::vector<Placed> placed;
        MKSpriteTile tile;
        tile.clear();
        for (int i = 0; i < 60; ++i) {
            const int height = 1 + static_cast<int>(random() % 60);
            placed.push_back({mixed(width, height, random), static_cast<int>(random() % (side + 100)) - 100,
                              static_cast<int>(random() % (side + 60)) - 60});
            tile.drawBehind(*placed.back().sprite, placed.back().x, placed.back().y);
        }
        expectSame(tile, placed);
    }
}

TEST(MKSpriteTile, LeavesWhatIsCoveredAlone) {
    std::mt19937 random(3);
    std::vector<Placed> placed;
    MKSpriteTile tile;
    tile.clear();
    for (int i = 0; i < 400; ++i) {
        placed.push_back({filled(40, 40, 0xff000000 | (random() & 0xffffff)), static_cast<int>(random() % 280) - 40,
                          static_cast<int>(random() % 280) - 40});
        tile.drawBehind(*placed.back().sprite, placed.back().x, placed.back().y);
    }
    expectSame(tile, placed);
}

TEST(MKSpriteTile, KnowsWhatHasBeenDrawnOn) {
    MKSpriteTile tile;
    tile.clear();
    tile.drawBehind(*filled(10, 10, 0xff000000), 20, 30);
    EXPECT_EQ(tile.extent(), (PixelRect{20, 30, 10, 10}));
    tile.drawBehind(*filled(10, 10, 0xff000000), -5, 200);
    EXPECT_EQ(tile.extent(), (PixelRect{0, 30, 30, 180}));
    tile.clear();
    EXPECT_TRUE(tile.isClear());
}

TEST(MKSprite, KnowsWhereItIsVisible) {
    const auto sprite = spriteOf(3, 1, {0x00000000, 0x19000000, 0xff000000});
    EXPECT_FALSE(sprite->isVisibleAt(0, 0));
    EXPECT_FALSE(sprite->isVisibleAt(1, 0));
    EXPECT_TRUE(sprite->isVisibleAt(2, 0));
    EXPECT_FALSE(sprite->isVisibleAt(3, 0));
    EXPECT_FALSE(sprite->isVisibleAt(2, 1));
}

} // namespace veyra
