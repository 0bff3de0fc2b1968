// How events reach the page's listener.
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraRegionSO.h"
#include "Classes/WebScriptObject+VeyraExtras.h"
#include "Tests/Classes/ViewFixture.h"
#include "Tests/Platform/Foundation/CapturedLog.h"

#include <thread>

namespace veyra {

class Event : public MapFixture {
protected:
    /// Sends an event as the map's callback does, on the main queue.
    void sendWillChange() {
        onMain([&] { view().mapViewRegionWillChangeAnimated(mapView(), false); });
    }
    void sendDidChange() {
        onMain([&] { view().mapViewRegionDidChangeAnimated(mapView(), false); });
    }
};

TEST_F(Event, RunOnTheWebThreadAfterTheSenderHasGoneOn) {
    record();
    sendWillChange();
    EXPECT_EQ(recorded(), "");
    runWeb();
    EXPECT_EQ(recorded(), "mapRegionWillChange");
}

TEST_F(Event, KeepTheOrderOfSendingAcrossThreads) {
    record();
    std::thread([&] { _veyra_webThreadCallWebScriptMethod(view().jsListener(), "first"); }).join();
    onMain([&] { _veyra_webThreadCallWebScriptMethod(view().jsListener(), "second", {id(2)}); });
    std::thread([&] { _veyra_webThreadCallWebScriptMethod(view().jsListener(), "third", {id("c")}); }).join();
    EXPECT_EQ(recorded(), "");
    runWeb();
    EXPECT_EQ(recorded(), "first\nsecond 2\nthird \"c\"");
}

TEST_F(Event, AreLostWhenNoListenerIsSet) {
    sendWillChange();
    sendDidChange();
    record();
    runWeb();
    EXPECT_EQ(recorded(), "");
    EXPECT_EQ(consoleErrors(), "");
}

TEST_F(Event, AreCalledWithTheListenerAsThis) {
    run("map.listener = { mapRegionWillChange() { self = this } }");
    sendWillChange();
    runWeb();
    EXPECT_EQ(run("self === map.listener"), "true");
}

TEST_F(Event, WithoutArgumentsHaveNone) {
    run("map.listener = { mapRegionWillChange() { count = arguments.length } }");
    sendWillChange();
    runWeb();
    EXPECT_EQ(run("count"), "0");
}

TEST_F(Event, FindNothingInAListenerWithoutTheirMethod) {
    const CapturedLog log;
    for (const char* listener : {"{}", "{ mapRegionWillChange: 5 }", "{ mapRegionWillChange: {} }", "[]", "(() => 1)",
                                 "{ mapRegionWillChange: null }"}) {
        run("map.listener = " + std::string(listener));
        sendWillChange();
        runWeb();
    }
    EXPECT_EQ(consoleErrors(), "");
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(Event, AreDroppedByAListenerThatIsNoObjectButReadsBack) {
    const CapturedLog log;
    for (const char* listener : {"5", "'text'", "true"}) {
        EXPECT_EQ(run("map.listener = " + std::string(listener) + "; map.listener === " + listener), "true");
        sendWillChange();
        sendDidChange();
        runWeb();
    }
    EXPECT_EQ(consoleErrors(), "");
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(Event, GoToTheListenerThatWasSetWhenTheyWereSent) {
    run("calls = []; map.listener = { mapRegionWillChange() { calls.push('first') } }");
    sendWillChange();
    run("map.listener = { mapRegionWillChange() { calls.push('second') } }");
    sendWillChange();
    run("map.listener = null");
    sendWillChange();
    runWeb();
    EXPECT_EQ(run("calls.join()"), "first,second");
}

TEST_F(Event, FindTheMethodThatTheListenerHasWhenTheyArrive) {
    run("calls = []; map.listener = { mapRegionWillChange() { calls.push('old') } }");
    sendWillChange();
    run("map.listener.mapRegionWillChange = () => calls.push('new')");
    runWeb();
    EXPECT_EQ(run("calls.join()"), "new");
}

TEST_F(Event, MethodsAreFoundOnTheListenersPrototypeToo) {
    run("class Listener { mapRegionWillChange() { globalThis.called = this.name } }; map.listener = new Listener; "
        "map.listener.name = 'instance'");
    sendWillChange();
    runWeb();
    EXPECT_EQ(run("called"), "instance");
}

TEST_F(Event, AListenersExceptionGoesToTheConsoleAndTheNextEventIsDelivered) {
    run("map.listener = { mapRegionWillChange() { throw new RangeError('in the listener') }, "
        "mapRegionDidChange() { arrived = true } }");
    sendWillChange();
    sendDidChange();
    runWeb();
    EXPECT_EQ(consoleErrors(), "RangeError: in the listener");
    EXPECT_EQ(run("arrived"), "true");
}

TEST_F(Event, AListenersGetterThatThrowsGoesToTheConsole) {
    run("map.listener = { get mapRegionWillChange() { throw new Error('no method') } }");
    sendWillChange();
    runWeb();
    EXPECT_EQ(consoleErrors(), "Error: no method");
}

TEST_F(Event, AListenersFaultInACallOfTheMapIsTheListenersAlone) {
    run("map.listener = { mapRegionWillChange() { map.setRegion(null) } }");
    sendWillChange();
    runWeb();
    EXPECT_EQ(consoleErrors(), "Error: Null object passed to 'setRegion'");
    EXPECT_EQ(run("map.mapType"), "0");
}

TEST_F(Event, AListenerMayReplaceItselfAndUseTheMap) {
    run("map.listener = { mapRegionWillChange() { map.listener = null; map.mapType = 1; done = true } }");
    sendWillChange();
    runWeb();
    EXPECT_EQ(run("done && map.listener === null && map.mapType === 1"), "true");
}

TEST_F(Event, AListenerMayStopItsMap) {
    defineFunction("stopMap", [&] { instance().stop(); });
    run("calls = 0; map.listener = { mapRegionWillChange() { ++calls; stopMap() } }");
    sendWillChange();
    sendWillChange();
    runWeb();
    EXPECT_EQ(run("calls"), "2") << "sent before the map was stopped";
    runMain();
    EXPECT_EQ(VeyraView::liveViews(), 0u);
}

TEST_F(Event, OfAPageThatHasGoneCallNobody) {
    run("calls = 0; map.listener = { mapRegionWillChange() { ++calls } }");
    sendWillChange();
    context->invalidate();
    runWeb();
    EXPECT_EQ(run("calls"), "0");
}

TEST_F(Event, ValueObjectsArriveWithTheirKeys) {
    run("map.listener = { happened(region) { keys = Object.keys(region).join() + ' ' + region.latitude } }");
    auto region = std::make_shared<VeyraRegionSO>();
    region->setLatitude(12.5);
    _veyra_webThreadCallWebScriptMethod(view().jsListener(), "happened", {id(region)});
    EXPECT_EQ(run("keys"), "latitude,longitude,latitudeDelta,longitudeDelta 12.5");
}

TEST_F(Event, ArraysArriveAsOneArgumentAndListsAsMany) {
    record();
    _veyra_webThreadCallWebScriptMethod(view().jsListener(), "one", {id(NSArray{id("a"), id("b")})});
    _veyra_webThreadCallWebScriptMethod(view().jsListener(), "many", {id("a"), id("b")});
    EXPECT_EQ(recorded(), "one [\"a\",\"b\"]\nmany \"a\" \"b\"");
}

TEST_F(Event, TheSeventeenNamesAreTheListenersMethods) {
    const std::pair<const NSString&, const char*> names[] = {
        {kVeyraWillStartLoadingMap, "mapWillStartLoadingMap"},
        {kVeyraDidFinishLoadingMap, "mapDidFinishLoadingMap"},
        {kVeyraDidFailLoadingMap, "mapDidFailLoadingMap"},
        {kVeyraRegionWillChange, "mapRegionWillChange"},
        {kVeyraRegionDidChange, "mapRegionDidChange"},
        {kVeyraWillStartUpdatingUserLocation, "mapWillStartUpdatingUserLocation"},
        {kVeyraDidUpdateUserLocation, "mapDidUpdateUserLocation"},
        {kVeyraDidStopUpdatingUserLocation, "mapDidStopUpdatingUserLocation"},
        {kVeyraUpdateUserLocationFailed, "mapUpdateUserLocationFailed"},
        {kVeyraFailedRetrievingImageForAnnotation, "mapFailedRetrievingImageForAnnotation"},
        {kVeyraDidAddViewsForAnnotations, "mapDidAddViewsForAnnotations"},
        {kVeyraDidSelectAnnotation, "mapDidSelectAnnotation"},
        {kVeyraDidDeselectAnnotation, "mapDidDeselectAnnotation"},
        {kVeyraAnnotationLeftCalloutTapped, "mapAnnotationLeftCalloutTapped"},
        {kVeyraAnnotationRightCalloutTapped, "mapAnnotationRightCalloutTapped"},
        {kVeyraAnnotationDidFinishDrag, "mapAnnotationDidFinishDrag"},
        {kVeyraDidAddOverlays, "mapDidAddOverlays"},
    };
    for (const auto& [constant, text] : names)
        EXPECT_EQ(constant.utf8(), text);
    EXPECT_EQ(kVeyraUserLocationAnnotationIdentifier.utf8(), "mapUserLocationAnnotationIdentifier");
}

} // namespace veyra
