// A window of 400 × 300 points with one view over all of it, scripted touches, and a record of what a recogniser
// reports.
#pragma once

#include "MainQueueFixture.h"
#include "TestView.h"

#include "Platform/UIKit/UIGestureRecognizer.h"
#include "Platform/UIKit/UIWindow.h"

namespace veyra {

using State = UIGestureRecognizerState;

inline void PrintTo(State state, std::ostream* out) {
    const char* const names[] = {"Possible", "Began", "Changed", "Ended", "Cancelled", "Failed"};
    *out << names[static_cast<int>(state)];
}

class GestureFixture : public MainQueueFixture {
protected:
    GestureFixture() {
        window->setSize({400, 300}, 1);
        window->addSubview(view);
    }

    void send(int64_t identifier, UITouchPhase phase, CGPoint location, double time,
              UITouchType type = UITouchType::Direct) const {
        window->sendEvent(UITouchEvent{identifier, type, phase, location, time});
    }
    void down(int64_t identifier, CGPoint location, double time = 0, UITouchType type = UITouchType::Direct) const {
        send(identifier, UITouchPhase::Began, location, time, type);
    }
    void move(int64_t identifier, CGPoint location, double time = 0, UITouchType type = UITouchType::Direct) const {
        send(identifier, UITouchPhase::Moved, location, time, type);
    }
    void up(int64_t identifier, CGPoint location, double time = 0, UITouchType type = UITouchType::Direct) const {
        send(identifier, UITouchPhase::Ended, location, time, type);
    }
    void tap(CGPoint location, double time, int64_t identifier = 1) const {
        down(identifier, location, time);
        up(identifier, location, time + 0.05);
    }

    /// Makes a recogniser on `owner` (the view, when null) whose states go to `states`.
    template <class T>
    std::shared_ptr<T> add(std::vector<State>& states, const std::shared_ptr<UIView>& owner = nullptr) {
        auto recognizer = std::make_shared<T>();
        recognizer->setHandler([&states](UIGestureRecognizer& r) { states.push_back(r.state()); });
        (owner ? owner : view)->addGestureRecognizer(recognizer);
        return recognizer;
    }

    std::shared_ptr<UIWindow> window = UIWindow::make();
    std::shared_ptr<TestView> view = TestView::make({{0, 0}, {400, 300}});
};

using States = std::vector<State>;

} // namespace veyra
