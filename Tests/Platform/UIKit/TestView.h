// A view that records what it is asked, and fills itself with a colour.
#pragma once

#include "Platform/UIKit/UIView.h"

#include <cairo.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace veyra {

inline void PrintTo(const PixelRect& r, std::ostream* out) {
    *out << '{' << r.x << ", " << r.y << ", " << r.width << ", " << r.height << '}';
}
inline void PrintTo(const CGPoint& p, std::ostream* out) {
    *out << '{' << p.x << ", " << p.y << '}';
}
inline void PrintTo(const CGRect& r, std::ostream* out) {
    *out << '{' << r.origin.x << ", " << r.origin.y << ", " << r.size.width << ", " << r.size.height << '}';
}

class TestView : public UIView {
public:
    static std::shared_ptr<TestView> make(const CGRect& frame, std::string name = "",
                                          std::vector<std::string>* calls = nullptr) {
        auto view = UIView::make<TestView>(frame);
        view->name = std::move(name);
        view->calls = calls;
        return view;
    }
    ~TestView() override {
        if (onDestroy)
            onDestroy();
    }

    void layoutSubviews() override {
        record("layout");
        if (onLayout)
            onLayout();
    }
    void drawRect(const UIGraphicsContext& context) override {
        record("draw");
        clips.push_back(context.clip);
        if (onDraw)
            onDraw(context);
        cairo_set_source_rgba(context.cairo, red, green, blue, 1);
        cairo_paint(context.cairo);
    }
    bool isOpaque() const override { return opaque; }
    bool stepAnimations(double timestamp) override {
        record("step");
        stepTimes.push_back(timestamp);
        return onStep && onStep();
    }
    bool isIdle() const override { return idle; }
    bool keepsTouches() const override { return keeps; }
    bool handleScroll(const UIScrollEvent& event) override {
        record("scroll");
        scrolls.push_back(convertPointFromWindow(event.location));
        return usesInput;
    }
    bool handleKey(const UIKeyEvent& event) override {
        record("key " + event.key);
        return usesInput;
    }

    std::string name;
    std::vector<std::string>* calls = nullptr;
    double red = 0, green = 0, blue = 0;
    bool opaque = false, idle = true, usesInput = false, keeps = false;
    std::vector<PixelRect> clips;
    std::vector<double> stepTimes;
    std::vector<CGPoint> scrolls;
    std::function<void()> onLayout, onDestroy;
    std::function<void(const UIGraphicsContext&)> onDraw;
    std::function<bool()> onStep;

private:
    void record(const std::string& call) const {
        if (calls)
            calls->push_back(name + " " + call);
    }
};

} // namespace veyra
