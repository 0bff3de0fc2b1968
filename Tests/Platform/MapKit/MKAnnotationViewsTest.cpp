// When a map asks for the views of annotations, gives them back, and what it reports.
#include "Tests/Platform/MapKit/AnnotationFixture.h"

#include "Platform/Foundation/DispatchQueue.h"

namespace veyra {

namespace {

using Annotations = AnnotationTest;

} // namespace

TEST_F(Annotations, AreAskedForInsideTheAddWhereTheyAreVisible) {
    showAround();
    const auto a = add("a", {1, 1});
    EXPECT_EQ(takeCalls(), (Calls{"view a"}));
    ASSERT_NE(map->viewForAnnotation(a), nullptr);
    EXPECT_EQ(map->viewForAnnotation(a)->annotation(), a);
}

TEST_F(Annotations, AreNotAskedForBeforeTheFirstLayout) {
    const auto a = add("a", {1, 1});
    EXPECT_EQ(calls(), Calls());
    EXPECT_EQ(map->annotations().size(), 1U);
    window->setSize({400, 300}, 1);
    EXPECT_EQ(delegate->calls.front(), "view a");
    EXPECT_NE(map->viewForAnnotation(a), nullptr);
}

TEST_F(Annotations, AreAskedForWhenTheyComeIntoView) {
    showAround();
    const auto far = add("far", {1, 100});
    EXPECT_EQ(takeCalls(), Calls());
    EXPECT_EQ(map->viewForAnnotation(far), nullptr);
    map->setCenterCoordinate({0, 100});
    EXPECT_EQ(takeCalls(), (Calls{"view far"}));
    runQueue();
    EXPECT_EQ(takeCalls(), (Calls{"added far"}));
}

TEST_F(Annotations, AreAskedForWhileTheMapMoves) {
    showAround();
    add("far", {1, 45});
    touch(1, UITouchPhase::Began, {300, 10});
    for (int x = 290; x >= 20; x -= 10) {
        touch(1, UITouchPhase::Moved, {static_cast<double>(x), 10});
        frame();
    }
    EXPECT_EQ(takeCalls(), (Calls{"view far", "added far"}));
}

TEST_F(Annotations, AreReportedOnceForAllThatWereAddedInATurn) {
    showAround();
    add("a", {1, 1});
    dispatch_async(dispatch_get_main_queue(), [this] { add("b", {2, 2}); });
    add("c", {3, 3});
    runQueue();
    EXPECT_EQ(takeCalls(), (Calls{"view a", "view c", "view b", "added a c b"}));
}

TEST_F(Annotations, AreReportedBeforeTheNextFrameIsDrawn) {
    showAround();
    add("a", {1, 1});
    takeCalls();
    window->drawFrame(now += 1.0 / 60);
    EXPECT_EQ(takeCalls(), (Calls{"added a"}));
}

TEST_F(Annotations, OfABatchThatComesInPartsAreReportedTogether) {
    showAround();
    map->setAwaitsMoreAnnotations(true);
    add("a", {0, 0});
    runQueue();
    frame();
    EXPECT_EQ(takeCalls(), (Calls{"view a"}));
    EXPECT_FALSE(window->isIdle());
    map->setAwaitsMoreAnnotations(true);
    add("b", {0, 1});
    map->setAwaitsMoreAnnotations(false);
    runQueue();
    EXPECT_EQ(takeCalls(), (Calls{"view b", "added a b"}));
    settle();
    EXPECT_TRUE(window->isIdle());
}

TEST_F(Annotations, OfALargeBatchThatComesInPartsAreDrawnWithItsEnd) {
    showAround();
    useImages(makeImage(10, 10, 0xffff0000));
    const auto isDrawn = [&](int x) {
        frame();
        return pixelAt(x, 150) == 0xff0000U;
    };
    map->setAwaitsMoreAnnotations(true);
    add("first", {0, -15});
    EXPECT_TRUE(isDrawn(50));
    for (int i = 0; i < 150; ++i) {
        add("a", {-10, i / 100.0});
    }
    const auto late = add("late", {0, -10});
    EXPECT_NE(map->viewForAnnotation(late), nullptr);
    EXPECT_FALSE(isDrawn(100));
    map->setAwaitsMoreAnnotations(false);
    EXPECT_TRUE(isDrawn(100));
    EXPECT_TRUE(isDrawn(50));
}

TEST_F(Annotations, OfALargeBatchMayLeaveTheViewBeforeItsEnd) {
    showAround();
    map->setAwaitsMoreAnnotations(true);
    std::vector<std::shared_ptr<TestAnnotation>> batch;
    for (int i = 0; i < 150; ++i) {
        batch.push_back(add("a", {0, i / 100.0}));
    }
    map->setCenterCoordinate({0, 120});
    EXPECT_EQ(map->viewForAnnotation(batch.front()), nullptr);
    EXPECT_EQ(map->viewForAnnotation(batch.back()), nullptr);
    map->setAwaitsMoreAnnotations(false);
    takeCalls();
    settle();
    EXPECT_EQ(takeCalls(), Calls()) << "what is gone is not reported";
    map->setCenterCoordinate({0, 0});
    EXPECT_NE(map->viewForAnnotation(batch.back()), nullptr);
}

TEST_F(Annotations, ArePositionedBeforeTheyAreReported) {
    showAround();
    CGRect reported;
    std::shared_ptr<TestAnnotation> a;
    delegate->onCall = [&](const std::string& call) {
        if (call == "added a") {
            reported = map->viewForAnnotation(a)->frame();
        }
    };
    a = add("a", {0, 0});
    runQueue();
    EXPECT_NEAR(reported.center().x, 200, 1e-6);
    EXPECT_NEAR(reported.maxY(), 150, 1e-6);
}

TEST_F(Annotations, ThatAreGoneByThenAreNotReported) {
    showAround();
    const auto a = add("a", {1, 1});
    const auto b = add("b", {1, 1});
    map->removeAnnotation(a);
    runQueue();
    EXPECT_EQ(takeCalls(), (Calls{"view a", "view b", "added b"}));
    const auto c = add("c", {1, 1});
    map->removeAnnotation(c);
    runQueue();
    EXPECT_EQ(takeCalls(), (Calls{"view c"}));
}

TEST_F(Annotations, AddedTwiceAreThereOnce) {
    showAround();
    const auto a = add("a", {1, 1});
    map->addAnnotation(a);
    map->addAnnotations({a, nullptr});
    runQueue();
    EXPECT_EQ(takeCalls(), (Calls{"view a", "added a"}));
    EXPECT_EQ(map->annotations().size(), 1U);
    map->removeAnnotation(a);
    map->removeAnnotation(a);
    EXPECT_TRUE(map->annotations().empty());
}

TEST_F(Annotations, GiveTheirViewsToTheReuseQueueWhenTheyLeave) {
    showAround();
    const auto a = add("a", {1, 1});
    const auto view = map->viewForAnnotation(a);
    EXPECT_EQ(map->dequeueReusableAnnotationViewWithIdentifier("pin"), nullptr);
    map->setCenterCoordinate({0, 100});
    EXPECT_EQ(map->viewForAnnotation(a), nullptr);
    const auto b = add("b", {1, 100});
    EXPECT_EQ(map->viewForAnnotation(b), view);
    EXPECT_EQ(view->annotation(), b);
    EXPECT_EQ(map->dequeueReusableAnnotationViewWithIdentifier("pin"), nullptr);
}

TEST_F(Annotations, GiveTheirViewsToTheReuseQueueWhenTheyAreRemoved) {
    showAround();
    const auto a = add("a", {1, 1});
    const auto view = map->viewForAnnotation(a);
    map->removeAnnotation(a);
    EXPECT_EQ(map->dequeueReusableAnnotationViewWithIdentifier("other"), nullptr);
    EXPECT_EQ(map->dequeueReusableAnnotationViewWithIdentifier("pin"), view);
}

TEST_F(Annotations, ComeBackWithAnotherReport) {
    showAround();
    add("a", {1, 1});
    runQueue();
    map->setCenterCoordinate({0, 100});
    map->setCenterCoordinate({0, 0});
    runQueue();
    EXPECT_EQ(takeCalls(), (Calls{"view a", "added a", "view a", "added a"}));
}

TEST_F(Annotations, WithoutAViewOfTheDelegateGetARedPin) {
    showAround();
    delegate->makeView = [](MKMapView&, const auto&) { return nullptr; };
    const auto a = add("a", {1, 1});
    const auto pin = std::dynamic_pointer_cast<MKPinAnnotationView>(map->viewForAnnotation(a));
    ASSERT_NE(pin, nullptr);
    EXPECT_EQ(pin->pinColor(), MKPinAnnotationColorRed);
}

TEST_F(Annotations, DoNotShareAView) {
    showAround();
    const auto a = add("a", {1, 1});
    delegate->makeView = [this, a](MKMapView&, const auto&) { return map->viewForAnnotation(a); };
    const auto b = add("b", {2, 2});
    EXPECT_EQ(map->viewForAnnotation(a)->annotation(), a);
    EXPECT_NE(map->viewForAnnotation(b), map->viewForAnnotation(a));
}

TEST_F(Annotations, MayBeRemovedByTheDelegateWhileItIsAsked) {
    showAround();
    std::shared_ptr<TestAnnotation> a = annotation("a", {1, 1});
    delegate->onCall = [&](const std::string& call) {
        if (call == "view a") {
            map->removeAnnotation(a);
        }
    };
    map->addAnnotations({a, annotation("b", {2, 2})});
    runQueue();
    EXPECT_EQ(takeCalls(), (Calls{"view a", "view b", "added b"}));
    EXPECT_EQ(map->annotations().size(), 1U);
}

TEST_F(Annotations, MayBeAddedByTheDelegateWhileItIsToldOfOthers) {
    showAround();
    delegate->onCall = [&](const std::string& call) {
        if (call == "added a") {
            add("b", {2, 2});
        }
    };
    add("a", {1, 1});
    runQueue();
    EXPECT_EQ(takeCalls(), (Calls{"view a", "added a", "view b", "added b"}));
}

TEST_F(Annotations, WithACoordinateThatIsNoNumberAreNowhere) {
    showAround();
    const auto a = add("a", {std::nan(""), 1});
    const auto b = add("b", {1, INFINITY});
    EXPECT_EQ(calls(), Calls());
    EXPECT_EQ(map->annotations().size(), 2U);
    a->position = {1, 1};
    map->annotationCoordinateDidChange(a);
    EXPECT_EQ(takeCalls(), (Calls{"view a"}));
    map->removeAnnotations({a, b});
    EXPECT_TRUE(map->annotations().empty());
}

TEST_F(Annotations, BeyondTheWorldAreShownAtItsEdge) {
    showAround({85, 0});
    const auto pole = add("pole", {95, 0});
    const auto wrapped = add("wrapped", {84, 361});
    ASSERT_NE(map->viewForAnnotation(pole), nullptr);
    ASSERT_NE(map->viewForAnnotation(wrapped), nullptr);
    EXPECT_NEAR(map->viewForAnnotation(wrapped)->frame().center().x, 210, 1e-6);
}

TEST_F(Annotations, AcrossTheAntimeridianAreInView) {
    showAround({0, 179});
    const auto east = add("east", {0, 178}), west = add("west", {0, -179});
    EXPECT_NEAR(map->viewForAnnotation(east)->frame().center().x, 190, 1e-6);
    EXPECT_NEAR(map->viewForAnnotation(west)->frame().center().x, 220, 1e-6);
}

TEST_F(Annotations, FollowACoordinateThatHasChanged) {
    showAround();
    const auto a = add("a", {0, 0});
    a->position = {0, 5};
    map->annotationCoordinateDidChange(a);
    EXPECT_NEAR(map->viewForAnnotation(a)->frame().center().x, 250, 1e-6);
    a->position = {0, 120};
    map->annotationCoordinateDidChange(a);
    EXPECT_EQ(map->viewForAnnotation(a), nullptr);
}

TEST_F(Annotations, KeepTheMapBusyUntilTheyAreReported) {
    showAround();
    EXPECT_TRUE(map->window()->isIdle());
    add("a", {1, 1});
    EXPECT_FALSE(map->window()->isIdle());
    settle();
    EXPECT_EQ(calls(), (Calls{"view a", "added a"}));
}

TEST_F(Annotations, ViewsOutliveTheirMap) {
    showAround();
    const auto a = add("a", {1, 1});
    const auto view = map->viewForAnnotation(a);
    map->removeFromSuperview();
    map.reset();
    view->setImage(makeImage(2, 2, 0xffffffff));
    EXPECT_EQ(view->frame(), CGRect());
}

TEST_F(Annotations, ManyThatComeIntoViewAtOnceAllGetTheirViews) {
    showAround({0, 100});
    std::vector<std::shared_ptr<MKAnnotation>> many;
    for (int i = 0; i < 20000; ++i) {
        many.push_back(annotation("a", {i % 100 / 10.0 - 5, i / 100 / 10.0 - 10}));
    }
    map->addAnnotations(many);
    EXPECT_EQ(calls(), Calls());
    map->setCenterCoordinate({0, 0});
    settle();
    for (const auto& one : many) {
        ASSERT_NE(map->viewForAnnotation(one), nullptr);
    }
}

} // namespace veyra
