// What is drawn where, and the pixels that a host copies.
#include "MainQueueFixture.h"
#include "TestView.h"

#include "Platform/UIKit/UIWindow.h"

namespace veyra {

class UIWindowDrawingTest : public MainQueueFixture {
protected:
    using Rects = std::vector<PixelRect>;
    using Calls = std::vector<std::string>;

    uint32_t pixel(int x, int y) const {
        cairo_surface_t* const store = window->surface();
        cairo_surface_flush(store);
        const unsigned char* const row =
            cairo_image_surface_get_data(store) + y * cairo_image_surface_get_stride(store);
        return reinterpret_cast<const uint32_t*>(row)[x] & 0xffffff;
    }
    std::shared_ptr<TestView> addView(const CGRect& frame, double red, double green, double blue,
                                      const std::string& name = "view") {
        const auto view = TestView::make(frame, name, &calls);
        view->red = red, view->green = green, view->blue = blue;
        window->addSubview(view);
        return view;
    }
    Calls calls;
    std::shared_ptr<UIWindow> window = UIWindow::make();
};

TEST_F(UIWindowDrawingTest, WhatNoViewCoversIsWhite) {
    window->setSize({20, 20}, 1);
    addView({{5, 5}, {10, 10}}, 1, 0, 0);
    EXPECT_EQ(window->drawFrame(0), (Rects{{0, 0, 20, 20}}));
    EXPECT_EQ(pixel(4, 5), 0xffffffu);
    EXPECT_EQ(pixel(5, 5), 0xff0000u);
    EXPECT_EQ(pixel(14, 14), 0xff0000u);
    EXPECT_EQ(pixel(15, 14), 0xffffffu);
}

TEST_F(UIWindowDrawingTest, AMovedViewDamagesBothPlaces) {
    window->setSize({1000, 1000}, 1);
    const auto view = addView({{5, 5}, {10, 10}}, 1, 0, 0);
    window->drawFrame(0);
    view->setFrame({{700, 800}, {10, 10}});
    EXPECT_EQ(window->drawFrame(1), (Rects{{5, 5, 10, 10}, {700, 800, 10, 10}}));
    EXPECT_EQ(pixel(5, 5), 0xffffffu);
    EXPECT_EQ(pixel(700, 800), 0xff0000u);
    EXPECT_EQ(view->clips.back(), (PixelRect{700, 800, 10, 10}));
    view->setHidden(true);
    EXPECT_EQ(window->drawFrame(2), (Rects{{700, 800, 10, 10}}));
    EXPECT_EQ(pixel(700, 800), 0xffffffu);
    view->setHidden(false);
    window->drawFrame(3);
    view->removeFromSuperview();
    EXPECT_EQ(window->drawFrame(4), (Rects{{700, 800, 10, 10}}));
    EXPECT_EQ(pixel(700, 800), 0xffffffu);
}

TEST_F(UIWindowDrawingTest, DrawingIsClippedToTheDamage) {
    window->setSize({100, 100}, 1);
    const auto view = addView({{10, 10}, {80, 80}}, 1, 0, 0);
    window->drawFrame(0);
    view->red = 0, view->green = 1;
    view->setNeedsDisplayInRect({{5, 5}, {3, 2}});
    EXPECT_EQ(window->drawFrame(1), (Rects{{15, 15, 3, 2}}));
    EXPECT_EQ(view->clips.back(), (PixelRect{15, 15, 3, 2}));
    int green = 0;
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 100; ++x)
            green += pixel(x, y) == 0x00ff00u;
    EXPECT_EQ(green, 6);
    EXPECT_EQ(pixel(15, 15), 0x00ff00u);
    EXPECT_EQ(pixel(17, 16), 0x00ff00u);
}

TEST_F(UIWindowDrawingTest, ViewsAreClippedToTheBoundsOfAllAbove) {
    window->setSize({100, 100}, 1);
    const auto outer = addView({{20, 20}, {30, 30}}, 0, 0, 1, "outer");
    const auto inner = TestView::make({{-10, 20}, {100, 5}}, "inner", &calls);
    inner->red = 1;
    outer->addSubview(inner);
    window->drawFrame(0);
    EXPECT_EQ(inner->clips.back(), (PixelRect{20, 40, 30, 5}));
    EXPECT_EQ(pixel(19, 42), 0xffffffu);
    EXPECT_EQ(pixel(20, 42), 0xff0000u);
    EXPECT_EQ(pixel(49, 42), 0xff0000u);
    EXPECT_EQ(pixel(50, 42), 0xffffffu);
    EXPECT_EQ(pixel(30, 30), 0x0000ffu);
    inner->setNeedsDisplayInRect({{0, 0}, {10, 5}});
    EXPECT_EQ(window->drawFrame(1), Rects{}) << "outside the outer view";
}

TEST_F(UIWindowDrawingTest, FractionalFramesSnapToTheNearestPixelsAndDamageAllTheyTouch) {
    window->setSize({100, 100}, 1.5);
    const auto view = addView({{10.1, 10.3}, {20, 20}}, 1, 0, 0);
    window->drawFrame(0);
    EXPECT_EQ(view->clips.back(), (PixelRect{15, 15, 30, 30}));
    view->setNeedsDisplay();
    EXPECT_EQ(window->drawFrame(1), (Rects{{15, 15, 31, 31}}));
    view->setFrame({{10, 10}, {20, 20}});
    window->drawFrame(2);
    view->setNeedsDisplayInRect({{0.1, 0.1}, {1, 1}});
    EXPECT_EQ(window->drawFrame(3), (Rects{{15, 15, 2, 2}}));
}

TEST_F(UIWindowDrawingTest, WhatAnOpaqueViewHidesIsNotDrawn) {
    window->setSize({100, 100}, 1);
    addView({{0, 0}, {100, 100}}, 1, 0, 0, "back");
    const auto cover = addView({{10, 10}, {80, 80}}, 0, 1, 0, "cover");
    const auto front = TestView::make({{0, 0}, {40, 40}}, "front", &calls);
    front->blue = 1;
    cover->addSubview(front);
    cover->opaque = true;
    window->drawFrame(0);
    EXPECT_EQ(calls, (Calls{"back layout", "cover layout", "front layout", "back draw", "cover draw", "front draw"}));
    calls.clear();
    front->setNeedsDisplay();
    window->drawFrame(1);
    EXPECT_EQ(calls, (Calls{"cover draw", "front draw"}));
    EXPECT_EQ(pixel(10, 10), 0x0000ffu);
    calls.clear();
    cover->setHidden(true);
    window->drawFrame(2);
    EXPECT_EQ(calls, Calls{"back draw"});
    EXPECT_EQ(pixel(50, 50), 0xff0000u);
}

TEST_F(UIWindowDrawingTest, TheContextStartsAtTheViewsCornerInPointsAndTargetsTheStore) {
    window->setSize({50, 50}, 2);
    const auto view = addView({{10, 20}, {10, 10}}, 1, 1, 1);
    view->onDraw = [&](const UIGraphicsContext& context) {
        EXPECT_EQ(context.scale, 2);
        EXPECT_EQ(context.origin, (CGPoint{10, 20}));
        EXPECT_EQ(cairo_get_target(context.cairo), window->surface());
        double x = 1, y = 2;
        cairo_user_to_device(context.cairo, &x, &y);
        EXPECT_EQ(x, 22);
        EXPECT_EQ(y, 44);
        double left, top, right, bottom;
        cairo_clip_extents(context.cairo, &left, &top, &right, &bottom);
        EXPECT_EQ(left, 0);
        EXPECT_EQ(top, 0);
        EXPECT_EQ(right, 10);
        EXPECT_EQ(bottom, 10);
    };
    window->drawFrame(0);
    EXPECT_EQ(view->clips, (Rects{{20, 40, 20, 20}}));
}

TEST_F(UIWindowDrawingTest, WhatOneViewDoesToItsContextDoesNotReachTheNext) {
    window->setSize({20, 20}, 1);
    const auto spoiler = addView({{0, 0}, {20, 20}}, 1, 0, 0);
    spoiler->onDraw = [](const UIGraphicsContext& context) {
        cairo_scale(context.cairo, 0, 0); // no inverse: an error that stays
        cairo_save(context.cairo);
    };
    addView({{5, 5}, {5, 5}}, 0, 1, 0);
    window->drawFrame(0);
    EXPECT_EQ(pixel(6, 6), 0x00ff00u);
    EXPECT_EQ(pixel(1, 1), 0xffffffu);
}

TEST_F(UIWindowDrawingTest, AResizeWhileDrawingIsSafeAndDrawsAnew) {
    window->setSize({50, 50}, 1);
    const auto view = addView({{0, 0}, {50, 50}}, 1, 0, 0);
    addView({{40, 40}, {10, 10}}, 0, 1, 0);
    view->onDraw = [&](const UIGraphicsContext&) {
        window->setSize({10, 10}, 1);
        view->onDraw = nullptr;
    };
    window->drawFrame(0);
    EXPECT_TRUE(window->needsFrame());
    EXPECT_EQ(window->drawFrame(1), (Rects{{0, 0, 10, 10}}));
    EXPECT_EQ(pixel(9, 9), 0xff0000u);
}

TEST_F(UIWindowDrawingTest, CopiedPixelsAreTheStoresInOtherOrder) {
    window->setSize({37, 11}, 1);
    const auto view = addView({{0, 0}, {37, 11}}, 0, 0, 0);
    window->drawFrame(0);
    auto* const data = cairo_image_surface_get_data(window->surface());
    const int storeStride = cairo_image_surface_get_stride(window->surface());
    for (int y = 0; y < 11; ++y)
        for (int x = 0; x < 37; ++x)
            reinterpret_cast<uint32_t*>(data + y * storeStride)[x] =
                static_cast<uint32_t>(x) << 24 | static_cast<uint32_t>(x * 6) << 16 |
                static_cast<uint32_t>(y * 23) << 8 | static_cast<uint32_t>(x ^ y);
    cairo_surface_mark_dirty(window->surface());

    const size_t stride = 37 * 4 + 3; // rows need no alignment
    std::vector<uint8_t> image(stride * 11, 0xee);
    window->store()->copyPixels({3, 2, 30, 7}, &image[2 * stride + 3 * 4], stride);
    for (size_t y = 0; y < 11; ++y) {
        for (size_t x = 0; x < 37; ++x) {
            const uint8_t* const p = &image[y * stride + 4 * x];
            const bool inside = x >= 3 && x < 33 && y >= 2 && y < 9;
            ASSERT_EQ(p[0], inside ? x * 6 : 0xee);
            ASSERT_EQ(p[1], inside ? y * 23 : 0xee);
            ASSERT_EQ(p[2], inside ? (x ^ y) : 0xee);
            ASSERT_EQ(p[3], inside ? 255 : 0xee);
        }
        for (size_t i = 37 * 4; i < stride; ++i)
            ASSERT_EQ(image[y * stride + i], 0xee);
    }
}

TEST_F(UIWindowDrawingTest, CopyingIsClippedToTheStore) {
    window->setSize({4, 4}, 1);
    window->drawFrame(0);
    std::vector<uint8_t> image(6 * 6 * 4, 0xee);
    window->store()->copyPixels({-1, -1, 6, 6}, image.data(), 24);
    for (size_t i = 0; i < image.size(); ++i) {
        const size_t x = i / 4 % 6, y = i / 24;
        ASSERT_EQ(image[i], x >= 1 && x < 5 && y >= 1 && y < 5 ? 255 : 0xee);
    }
    const std::vector<uint8_t> before = image;
    window->store()->copyPixels({4, 0, 6, 6}, image.data(), 24);
    EXPECT_EQ(image, before);
}

TEST_F(UIWindowDrawingTest, AStoreThatIsHeldKeepsItsPictureWhenTheWindowChangesItsSize) {
    window->setSize({4, 4}, 2);
    addView({{0, 0}, {4, 4}}, 1, 0, 0);
    window->drawFrame(0);
    const auto held = window->store();
    window->setSize({8, 2}, 1);
    EXPECT_NE(window->store(), held);
    window->drawFrame(1);
    EXPECT_EQ(held->bounds(), (PixelRect{0, 0, 8, 8}));
    EXPECT_EQ(held->scale(), 2);
    std::array<uint8_t, 4> last{};
    held->copyPixels({7, 7, 1, 1}, last.data(), 4);
    EXPECT_EQ(last, (std::array<uint8_t, 4>{255, 0, 0, 255}));
}

} // namespace veyra
