#include "Platform/Foundation/NSNotificationCenter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace veyra {
namespace {

class NSNotificationCenterTest : public testing::Test {
protected:
    NSNotificationCenter::Handler append(std::string text) {
        return [this, text](const NSNotification&) { _calls.push_back(text); };
    }

    NSNotificationCenter _center;
    std::vector<std::string> _calls;
};

TEST_F(NSNotificationCenterTest, CallsTheObserversOfTheNameInTheirOrder) {
    _center.addObserver("created", append("first"));
    _center.addObserver("destroyed", append("other"));
    _center.addObserver("created", append("second"));
    _center.postNotification("created", nullptr);
    EXPECT_EQ(_calls, (std::vector<std::string>{"first", "second"}));
}

TEST_F(NSNotificationCenterTest, HandsOverNameObjectAndUserInformation) {
    const auto object = std::make_shared<NSDictionary>(NSDictionary::Map{});
    const auto userInfo = std::make_shared<const NSDictionary>(NSDictionary::Map{{"type", "map"}});
    std::vector<NSNotification> received;
    std::thread::id thread;
    _center.addObserver("created", [&](const NSNotification& notification) {
        received.push_back(notification);
        thread = std::this_thread::get_id();
    });
    _center.postNotification("created", object, userInfo);
    _center.postNotification("created", object);
    ASSERT_EQ(received.size(), 2U);
    EXPECT_EQ(received[0].name, NSString("created"));
    EXPECT_EQ(received[0].object, object);
    EXPECT_EQ(received[0].userInfo, userInfo);
    EXPECT_EQ(received[1].userInfo, nullptr);
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST_F(NSNotificationCenterTest, CallsNoRemovedObserverAndFreesItsHandler) {
    const auto held = std::make_shared<int>(0);
    const auto token = _center.addObserver("created", [held](const NSNotification&) { ++*held; });
    _center.addObserver("created", append("stays"));
    _center.removeObserver(token);
    EXPECT_EQ(held.use_count(), 1);
    _center.removeObserver(token);
    _center.removeObserver(12345);
    _center.postNotification("created", nullptr);
    EXPECT_EQ(*held, 0);
    EXPECT_EQ(_calls, std::vector<std::string>{"stays"});
}

TEST_F(NSNotificationCenterTest, LetsHandlersChangeTheObservers) {
    NSNotificationCenter::Token last = 0;
    NSNotificationCenter::Token self = 0;
    self = _center.addObserver("created", [&](const NSNotification&) {
        _calls.emplace_back("first");
        _center.removeObserver(self);
        _center.removeObserver(last);
        _center.addObserver("created", append("new"));
    });
    last = _center.addObserver("created", append("removed before its turn"));
    _center.postNotification("created", nullptr);
    EXPECT_EQ(_calls, std::vector<std::string>{"first"});
    _center.postNotification("created", nullptr);
    EXPECT_EQ(_calls, (std::vector<std::string>{"first", "new"}));
}

TEST_F(NSNotificationCenterTest, MayBePostedFromAHandler) {
    _center.addObserver("outer", [&](const NSNotification&) { _center.postNotification("inner", nullptr); });
    _center.addObserver("inner", append("inner"));
    _center.postNotification("outer", nullptr);
    EXPECT_EQ(_calls, std::vector<std::string>{"inner"});
}

TEST_F(NSNotificationCenterTest, MayBeUsedFromManyThreads) {
    std::atomic<int> calls = 0;
    _center.addObserver("created", [&](const NSNotification&) { ++calls; });
    const auto work = [&] {
        for (int i = 0; i < 500; ++i) {
            const auto token = _center.addObserver("destroyed", [](const NSNotification&) {});
            _center.postNotification("created", nullptr);
            _center.removeObserver(token);
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(calls, 1000);
}

TEST(NSNotificationCenter, HasOneForTheProcess) {
    EXPECT_EQ(&NSNotificationCenter::defaultCenter(), &NSNotificationCenter::defaultCenter());
}

} // namespace
} // namespace veyra
