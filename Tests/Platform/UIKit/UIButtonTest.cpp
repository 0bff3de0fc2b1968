#include "GestureFixture.h"

#include "Platform/UIKit/UIButton.h"

namespace veyra {

class UIButtonTest : public GestureFixture {
protected:
    /// The button's 28 × 28 points at that scale, with black behind it.
    static std::vector<uint32_t> picture(UIButtonType type, double scale) {
        const auto screen = UIWindow::make();
        screen->setSize({28, 28}, scale);
        screen->addSubview(TestView::make({{0, 0}, {28, 28}}));
        screen->addSubview(UIButton::buttonWithType(type));
        screen->drawFrame(0);
        cairo_surface_flush(screen->surface());
        std::vector<uint32_t> pixels;
        const auto* const data = cairo_image_surface_get_data(screen->surface());
        for (int y = 0; y < screen->pixelHeight(); ++y) {
            const auto* const row =
                reinterpret_cast<const uint32_t*>(data + y * cairo_image_surface_get_stride(screen->surface()));
            for (int x = 0; x < screen->pixelWidth(); ++x)
                pixels.push_back(row[x] & 0xffffff);
        }
        return pixels;
    }
    /// Equal but for the rasteriser's sampling of edges, which is finer across than down.
    static bool alike(uint32_t a, uint32_t b) {
        for (int shift = 0; shift < 24; shift += 8)
            if (std::abs(static_cast<int>(a >> shift & 255) - static_cast<int>(b >> shift & 255)) > 8)
                return false;
        return true;
    }
    static constexpr uint32_t blue = 0x0c6be1, white = 0xffffff, behind = 0x000000;
};

TEST_F(UIButtonTest, HasTheSizeOfAFingerTipAndItsType) {
    EXPECT_EQ(UIButtonTypeDetailDisclosure, 2);
    EXPECT_EQ(UIButtonTypeInfoLight, 3);
    const auto button = UIButton::buttonWithType(UIButtonTypeInfoLight);
    EXPECT_EQ(button->frame(), (CGRect{{0, 0}, {28, 28}}));
    EXPECT_EQ(button->buttonType(), UIButtonTypeInfoLight);
}

TEST_F(UIButtonTest, DisclosureIsABlueDiscWithAWhiteChevron) {
    const auto pixels = picture(UIButtonTypeDetailDisclosure, 2);
    const auto at = [&](size_t x, size_t y) { return pixels[y * 56 + x]; };
    EXPECT_EQ(at(1, 1), behind);
    EXPECT_EQ(at(5, 28), behind);
    EXPECT_EQ(at(7, 28), blue);
    EXPECT_EQ(at(48, 28), blue);
    EXPECT_EQ(at(50, 28), behind);
    EXPECT_EQ(at(34, 28), white);
    EXPECT_EQ(at(26, 28), blue) << "the chevron is open to the left";
    for (size_t y = 0; y < 56; ++y)
        for (size_t x = 0; x < 56; ++x)
            if (x < 20 || x > 40) {
                ASSERT_TRUE(alike(at(x, y), at(x, 55 - y))) << "the disc is symmetrical";
            }
}

TEST_F(UIButtonTest, InfoIsALetterInABlueCircle) {
    const auto pixels = picture(UIButtonTypeInfoLight, 2);
    const auto at = [&](size_t x, size_t y) { return pixels[y * 56 + x]; };
    EXPECT_EQ(at(1, 1), behind);
    EXPECT_EQ(at(7, 28), blue);
    EXPECT_EQ(at(12, 28), white);
    EXPECT_EQ(at(27, 31), blue) << "the stem";
    EXPECT_EQ(at(29, 18), blue) << "the dot";
    EXPECT_EQ(at(28, 23), white) << "the gap below the dot";
    EXPECT_EQ(at(48, 28), blue);
    EXPECT_EQ(at(50, 28), behind);
}

TEST_F(UIButtonTest, TheRoundEdgeIsTheSameOnAllSidesAtEveryScale) {
    for (const double scale : {1.0, 1.5, 2.0, 2.5, 3.0}) {
        const auto pixels = picture(UIButtonTypeInfoLight, scale);
        const auto side = static_cast<size_t>(28 * scale);
        for (size_t i = 0; i < side; ++i) {
            ASSERT_TRUE(alike(pixels[i], pixels[(side - 1) * side + i])) << scale;
            const size_t row = side / 2;
            if (i < side / 5) {
                ASSERT_TRUE(alike(pixels[row * side + i], pixels[row * side + side - 1 - i])) << scale;
                ASSERT_TRUE(alike(pixels[i * side + row], pixels[(side - 1 - i) * side + row])) << scale;
            }
        }
    }
}

TEST_F(UIButtonTest, ATapCallsTheHandler) {
    const auto button = UIButton::buttonWithType(UIButtonTypeInfoLight);
    button->setFrame(button->frame().offsetBy(100, 100));
    view->addSubview(button);
    std::vector<UIButton*> tapped;
    button->setTapHandler([&tapped](UIButton& which) { tapped.push_back(&which); });
    tap({110, 110}, 0);
    EXPECT_EQ(tapped, std::vector{button.get()});
    tap({90, 110}, 1);
    EXPECT_EQ(tapped.size(), 1u);
    down(1, {110, 110}, 2);
    up(1, {150, 110}, 2.1);
    EXPECT_EQ(tapped.size(), 1u) << "moved away";
}

TEST_F(UIButtonTest, AHandlerMayRemoveTheButtonAndItself) {
    auto button = UIButton::buttonWithType(UIButtonTypeInfoLight);
    view->addSubview(button);
    const std::weak_ptr<UIButton> weak = button;
    int taps = 0;
    button->setTapHandler([&taps](UIButton& which) {
        ++taps;
        which.removeFromSuperview();
        which.setTapHandler(nullptr);
    });
    button.reset();
    tap({10, 10}, 0);
    EXPECT_EQ(taps, 1);
    EXPECT_TRUE(weak.expired());
}

} // namespace veyra
