// Creation, start, stop, layout and end of the plug-in view.
#include "Tests/Classes/ViewFixture.h"

#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/UIKit/CALayer.h"
#include "Tests/Platform/Foundation/CapturedLog.h"

#include <functional>
#include <optional>

namespace veyra {

namespace {

/// Calls the handler for each notification of a name as long as it lives.
class Observer {
public:
    Observer(const char* name, NSNotificationCenter::Handler handler)
        : _token(NSNotificationCenter::defaultCenter().addObserver(name, std::move(handler))) {}
    ~Observer() { NSNotificationCenter::defaultCenter().removeObserver(_token); }
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;

private:
    const NSNotificationCenter::Token _token;
};

} // namespace

using ViewLife = ViewFixture;

TEST_F(ViewLife, CreationPostsItsNotificationWithTheViewAndItsArgumentsWhenTheViewIsComplete) {
    const auto given = arguments();
    std::shared_ptr<VeyraView> posted;
    int count = 0;
    const Observer observer(VeyraCreatedNotification, [&](const NSNotification& notification) {
        ++count;
        posted = std::dynamic_pointer_cast<VeyraView>(notification.object);
        ASSERT_NE(posted, nullptr);
        EXPECT_EQ(notification.name.utf8(), "VeyraCreatedNotification");
        EXPECT_EQ(notification.userInfo, given);
        EXPECT_EQ(posted->pluginArguments(), given);
        EXPECT_EQ(posted->frame(), (CGRect{{0, 0}, {1, 1}}));
        EXPECT_EQ(posted->mapView()->delegate(), posted);
        EXPECT_EQ(run("typeof GeoMap"), "undefined");
    });
    std::shared_ptr<VeyraView> made;
    onMain([&] { made = VeyraView::plugInViewWithArguments(given); });
    EXPECT_EQ(count, 1);
    EXPECT_EQ(made, posted);
}

TEST_F(ViewLife, ANewViewHasAMapOfItsOwnSizeAndFieldsOfZero) {
    std::shared_ptr<VeyraView> view;
    onMain([&] { view = VeyraView::plugInViewWithArguments(arguments()); });
    ASSERT_EQ(view->subviews(), (std::vector<std::shared_ptr<UIView>>{view->mapView()}));
    EXPECT_EQ(view->mapView()->frame(), (CGRect{{0, 0}, {1, 1}}));
    EXPECT_EQ(view->mapView()->autoresizingMask(), 18u);
    EXPECT_EQ(view->mapView()->superview(), view);
    EXPECT_EQ(view->boundsSize(), (CGSize{1, 1}));
    EXPECT_TRUE(view->zoomEnabled());
    EXPECT_TRUE(view->scrollEnabled());
    EXPECT_EQ(view->droppedPinIdentifier().string()->utf8(), "dropped-pin-id");
    EXPECT_EQ(view->internalMapType(), 0u);
    EXPECT_FALSE(view->longPressDropsPin());
    EXPECT_FALSE(view->showsUserLocation());
    EXPECT_FALSE(view->userLocationVisible());
    EXPECT_TRUE(view->jsListener().isNil());
    EXPECT_EQ(view->longPressGestureRecognizer(), nullptr);
    EXPECT_EQ(view->delegate(), nullptr);
    EXPECT_EQ(view->screenScale(), 0);
    EXPECT_FALSE(view->clientAllowsFileURLLoading());
    EXPECT_FALSE(view->verboseDebugLoggingEnabled());
    EXPECT_EQ(view->visibleMapRect(), MKMapRect{});
    EXPECT_EQ(degrees(view->coordinateRegion().center), degrees({0, 0}));
    EXPECT_EQ(view->coordinateRegion().span, MKCoordinateSpan{});
}

TEST_F(ViewLife, TheScriptingObjectIsTheViewItself) {
    std::shared_ptr<VeyraView> view;
    onMain([&] { view = VeyraView::plugInViewWithArguments(arguments()); });
    EXPECT_EQ(view->objectForWebScript(), view);
}

TEST_F(ViewLife, TheHostsSwitchesAreKept) {
    const auto map = makeMap();
    view().setClientAllowsFileURLLoading(true);
    view().setVerboseDebugLoggingEnabled(true);
    view().setScreenScale(2.5);
    auto delegate = std::make_shared<NSObject>();
    view().setDelegate(delegate);
    EXPECT_TRUE(view().clientAllowsFileURLLoading());
    EXPECT_TRUE(view().verboseDebugLoggingEnabled());
    EXPECT_EQ(view().screenScale(), 2.5);
    EXPECT_EQ(view().delegate(), delegate);
    delegate = nullptr;
    EXPECT_EQ(view().delegate(), nullptr) << "the delegate is not owned";
}

TEST_F(ViewLife, AbsentPropertiesOfScriptObjectsReadAsNilOnceAViewWasMade) {
    onMain([&] { VeyraView::plugInViewWithArguments(arguments()); });
    EXPECT_TRUE(native("({})").valueForKey("absent").isNil());
    EXPECT_TRUE(native("({ absent: undefined })").valueForKey("absent").isNil());
    EXPECT_TRUE(native("(function () {})").valueForKey("absent").isNil());
}

TEST_F(ViewLife, StopPostsItsNotificationWithTheViewWithoutUserInfoAndThenDropsTheArguments) {
    const auto map = makeMap();
    const auto view = map->view();
    int count = 0;
    const Observer observer(VeyraDestroyedNotification, [&](const NSNotification& notification) {
        ++count;
        EXPECT_EQ(notification.name.utf8(), "VeyraDestroyedNotification");
        EXPECT_EQ(notification.object, view);
        EXPECT_EQ(notification.userInfo, nullptr);
        EXPECT_NE(view->pluginArguments(), nullptr);
    });
    onMain([&] { view->webPlugInDestroy(); });
    EXPECT_EQ(count, 1);
    EXPECT_EQ(view->pluginArguments(), nullptr);
}

TEST_F(ViewLife, AStoppedViewWorksButIsNotStartedAgain) {
    const auto map = makeMap();
    onMain([&] { view().webPlugInDestroy(); });
    run("delete globalThis.GeoMap");
    view().webPlugInInitialize();
    EXPECT_EQ(run("typeof GeoMap"), "undefined");
    EXPECT_EQ(run("map.mapType = 2; map.mapType"), "2");
    runMain();
    EXPECT_EQ(mapView().mapType(), MKMapTypeHybrid);
}

TEST_F(ViewLife, AContainerWithoutAFrameIsToleratedInSilence) {
    std::shared_ptr<VeyraView> view;
    const CapturedLog log;
    onMain([&] {
        view = VeyraView::plugInViewWithArguments(std::make_shared<NSDictionary>(
            NSDictionary::Map{{WebPlugInContainerKey, id(std::make_shared<WebPlugInContainer>(nullptr))}}));
    });
    view->webPlugInInitialize();
    EXPECT_EQ(run("typeof GeoMap"), "undefined");
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(ViewLife, NoArgumentsAtAllAreToleratedInSilence) {
    std::shared_ptr<VeyraView> view;
    const CapturedLog log;
    onMain([&] { view = VeyraView::plugInViewWithArguments(nullptr); });
    view->webPlugInInitialize();
    EXPECT_EQ(view->pluginArguments(), nullptr);
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(ViewLife, AFrameWhosePageHasGoneIsToleratedInSilence) {
    std::shared_ptr<VeyraView> view;
    onMain([&] { view = VeyraView::plugInViewWithArguments(arguments()); });
    context->invalidate();
    const CapturedLog log;
    view->webPlugInInitialize();
    EXPECT_EQ(run("typeof GeoMap"), "undefined");
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(ViewLife, SuperviewIsNilWhileTheLayerIsInNoLayerTree) {
    std::shared_ptr<VeyraView> view;
    onMain([&] { view = VeyraView::plugInViewWithArguments(arguments()); });
    EXPECT_EQ(view->superview(), nullptr);
}

TEST_F(ViewLife, SuperviewComesFromTheLayerTreeAndSkipsLayersWithoutAView) {
    std::shared_ptr<VeyraView> view;
    onMain([&] {
        view = VeyraView::plugInViewWithArguments(arguments());
        const auto root = UIView::make<UIView>({});
        const auto bare = std::make_shared<CALayer>();
        const auto strange = std::make_shared<CALayer>();
        const auto noView = std::make_shared<NSObject>();
        strange->setDelegate(noView);
        bare->addSublayer(view->layer());
        EXPECT_EQ(view->superview(), nullptr);
        strange->addSublayer(bare);
        EXPECT_EQ(view->superview(), nullptr);
        root->layer()->addSublayer(strange);
        EXPECT_EQ(view->superview(), root);
        bare->removeFromSuperlayer();
        EXPECT_EQ(view->superview(), nullptr);
    });
}

TEST_F(ViewLife, SuperviewOfAShownViewIsItsWindow) {
    const auto map = makeMap();
    EXPECT_EQ(view().superview(), map->window());
    onMain([&] { view().removeFromSuperview(); });
    EXPECT_EQ(view().superview(), nullptr);
}

TEST_F(ViewLife, TheViewFillsItsWindow) {
    const auto map = makeMap();
    layOut(320, 480);
    EXPECT_EQ(view().frame(), (CGRect{{0, 0}, {320, 480}}));
    layOut(0, 0);
    layOut(100, 50);
    EXPECT_EQ(view().frame(), (CGRect{{0, 0}, {100, 50}}));
    EXPECT_EQ(mapView().frame(), (CGRect{{0, 0}, {100, 50}}));
}

TEST_F(ViewLife, LayoutStoresTheSizeBeforeTheMapReportsItsRegion) {
    const auto map = makeMap();
    record();
    layOut(320, 480);
    EXPECT_EQ(view().boundsSize(), (CGSize{320, 480}));
    EXPECT_EQ(mapView().bounds().size, (CGSize{320, 480}));
    EXPECT_NE(view().visibleMapRect(), MKMapRect{});
    layOut(200, 100);
    EXPECT_EQ(view().boundsSize(), (CGSize{200, 100}));
    EXPECT_EQ(view().visibleMapRect(), mapView().visibleMapRect());
}

TEST_F(ViewLife, AFreedViewIsNoMapsDelegateAndHoldsNoMap) {
    std::shared_ptr<MKMapView> map;
    onMain([&] {
        auto view = VeyraView::plugInViewWithArguments(arguments());
        map = view->mapView();
        EXPECT_EQ(VeyraView::liveViews(), 1u);
        view = nullptr;
        EXPECT_EQ(VeyraView::liveViews(), 0u);
        EXPECT_EQ(map->delegate(), nullptr);
        EXPECT_EQ(map->superview(), nullptr);
    });
}

TEST_F(ViewLife, StoppingAnInstanceFreesTheViewOnTheMainQueue) {
    const auto map = makeMap();
    map->stop();
    EXPECT_EQ(map->view(), nullptr);
    EXPECT_EQ(VeyraView::liveViews(), 1u);
    runMain();
    EXPECT_EQ(VeyraView::liveViews(), 0u);
    map->stop(); // once more, in vain
    runMain();
    EXPECT_EQ(run("typeof map.mapType"), "undefined");
    EXPECT_EQ(run("map.setRegion({})"), "threw: TypeError: The method was called on an object that is no map");
}

} // namespace veyra
