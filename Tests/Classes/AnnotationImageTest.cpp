// The images of annotations: when they are loaded, what waits for them, and what shows them.
#include "Platform/Foundation/MethodBinding.h"
#include "Tests/Classes/AnnotationImageFixture.h"
#include "Tests/Platform/Foundation/CapturedLog.h"

namespace veyra {

namespace {

/// A host's delegate that answers what the test says.
class AnsweringDelegate final : public NSObject {
public:
    VEYRA_CLASS()
    id answer(const id& view, const id& string, bool allowOtherDomains, const id& error) {
        asked.push_back({view, string, id(allowOtherDomains), error});
        return made;
    }
    std::vector<NSArray> asked;
    id made;
};

Class AnsweringDelegate::classObject() {
    static Class cls = new ClassObject(
        "AnsweringDelegate", NSObject::classObject(),
        {bindMethod<&AnsweringDelegate::answer>("scriptObject:requestsURLForString:allowOtherDomains:error:")});
    return cls;
}

} // namespace

class AnnotationImage : public AnnotationImageFixture {};

TEST_F(AnnotationImage, IsWaitedForAndThenShown) {
    add("a", server.url("/pin.png"));
    EXPECT_FALSE(view().isIdle());
    EXPECT_EQ(annotations(), "");
    EXPECT_TRUE(onMap().empty());
    load();
    EXPECT_EQ(annotations(), "a");
    ASSERT_NE(imageOf("a"), nullptr);
    EXPECT_EQ(imageOf("a")->pixelWidth(), 16);
    EXPECT_EQ(failures(), "");
}

TEST_F(AnnotationImage, SharedByThreeIsLoadedOnceAndTheyAppearInTheOrderAdded) {
    run("map.addAnnotations([image('c', '" + server.url("/pin.png") + "'), image('a', '" + server.url("/pin.png") +
        "')])");
    add("b", server.url("/pin.png"));
    run("map.addAnnotation({ latitude: 1, longitude: 2, identifier: 'pin' })");
    runMain();
    EXPECT_EQ(annotations(), "pin");
    load();
    EXPECT_EQ(annotations(), "a,b,c,pin");
    EXPECT_EQ(server.count("/pin.png"), 1u);
    const std::string added = run("events.filter(event => event.startsWith('mapDidAdd')).join('\\n')");
    EXPECT_EQ(added, "mapDidAddViewsForAnnotations [\"pin\"]\nmapDidAddViewsForAnnotations [\"c\",\"a\",\"b\"]");
    EXPECT_EQ(imageOf("a"), imageOf("c"));
}

TEST_F(AnnotationImage, ThatIsThereAlreadyPutsAnAnnotationOnTheMapAtOnce) {
    add("a", server.url("/pin.png"));
    load();
    add("b", server.url("/pin.png"));
    EXPECT_EQ(annotations(), "a,b");
    EXPECT_EQ(server.count("/pin.png"), 1u);
}

TEST_F(AnnotationImage, OfOneAddressUnderTwoStringsIsLoadedTwice) {
    add("a", server.url("/pin.png"));
    add("b", server.url("/pin.png#b"));
    load();
    EXPECT_EQ(annotations(), "a,b");
    EXPECT_EQ(server.count("/pin.png"), 2u);
}

TEST_F(AnnotationImage, Of102400BytesIsShownAndOneMoreByteIsCancelledWithoutAnEvent) {
    server.serve("/most", pngOfLength(102400));
    server.serve("/more", pngOfLength(102401));
    add("most", server.url("/most"));
    add("more", server.url("/more"));
    load();
    EXPECT_EQ(annotations(), "most");
    EXPECT_EQ(failures(), "");
}

TEST_F(AnnotationImage, OfUnknownLengthIsCancelledWithoutAnEvent) {
    server.answer("/chunked", {.bytes = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n"});
    server.answer("/open", {.bytes = "HTTP/1.0 200 OK\r\n\r\n" + pngOfSize(8, 8)});
    add("chunked", server.url("/chunked"));
    add("open", server.url("/open"));
    load();
    EXPECT_EQ(annotations(), "");
    EXPECT_EQ(failures(), "");
}

TEST_F(AnnotationImage, ThatWasCancelledKeepsLaterOnesWaitingToo) {
    server.serve("/more", pngOfLength(102401));
    add("a", server.url("/more"));
    load();
    server.serve("/more", pngOfSize(8, 8));
    add("b", server.url("/more"));
    load();
    EXPECT_EQ(annotations(), "");
    EXPECT_EQ(server.count("/more"), 1u);
}

TEST_F(AnnotationImage, ThatIsNoImageKeepsItsAnnotationsWaitingWithoutAnEvent) {
    server.serve("/text", "this is no image");
    server.serve("/empty", "");
    server.serve("/bomb", "GIF89a\xff\xff\xff\xff");
    for (const char* path : {"/text", "/empty", "/bomb", "/not-found"}) {
        add(path, server.url(path));
        load();
        add(std::string(path) + " again", server.url(path));
        load();
        EXPECT_EQ(server.count(path), 1u) << path;
    }
    EXPECT_EQ(annotations(), "");
    EXPECT_EQ(failures(), "");
    EXPECT_EQ(run("map.addAnnotation({ latitude: 1, longitude: 1, identifier: '/text' })"), "undefined");
    runMain();
    EXPECT_EQ(annotations(), "/text") << "an annotation that waits holds no identifier";
}

TEST_F(AnnotationImage, ThatFailsShowsPinsWithAnEventForEach) {
    const std::string url = "http://127.0.0.1:" + std::to_string(test::refusedPort()) + "/pin.png";
    add("a", url, "pinColor: 'green', title: 'A'");
    add("b", url);
    load();
    EXPECT_EQ(failures(), "mapFailedRetrievingImageForAnnotation \"a\" -1004 \"" + url + "\"\n" +
                              "mapFailedRetrievingImageForAnnotation \"b\" -1004 \"" + url + "\"");
    EXPECT_EQ(annotations(), "a,b");
    EXPECT_TRUE(recordOf("a")->imageURLString().isNil());
    EXPECT_EQ(recordOf("a")->pinColor(), 1u);
    EXPECT_EQ(imageOf("a"), nullptr);
}

TEST_F(AnnotationImage, ThatFailedIsTriedAgainForALaterAnnotation) {
    server.answer("/later", {.bytes = ""});
    add("a", server.url("/later"));
    load();
    EXPECT_EQ(failures(), "mapFailedRetrievingImageForAnnotation \"a\" -1005 \"" + server.url("/later") + "\"");
    server.serve("/later", pngOfSize(8, 8));
    add("b", server.url("/later"));
    load();
    EXPECT_EQ(failures(), "");
    EXPECT_NE(imageOf("b"), nullptr);
}

TEST_F(AnnotationImage, ThatIsRedirectedAndFailsNamesTheNewAddress) {
    const std::string refused = "http://127.0.0.1:" + std::to_string(test::refusedPort()) + "/new.png";
    server.answer("/old", {.bytes = test::httpAnswer("302 Found", "", "Location: " + refused + "\r\n")});
    add("a", server.url("/old"));
    load();
    EXPECT_EQ(failures(), "mapFailedRetrievingImageForAnnotation \"a\" -1004 \"" + refused + "\"");
}

TEST_F(AnnotationImage, OfNoLegalAddressIsReportedAndItsAnnotationNeverShown) {
    view().setDelegate(nullptr);
    add("a", "http://[broken");
    add("b", "http://[broken");
    load();
    EXPECT_EQ(failures(), "mapFailedRetrievingImageForAnnotation \"a\" -1000 \"nil URL\"") << "b waits behind a";
    EXPECT_EQ(annotations(), "");
}

TEST_F(AnnotationImage, OfAnAddressThatCannotBeLoadedShowsAPin) {
    view().setDelegate(nullptr);
    add("a", "pin.png");
    add("b", "ftp://127.0.0.1/pin.png");
    load();
    EXPECT_EQ(failures(), "mapFailedRetrievingImageForAnnotation \"a\" -1002 \"pin.png\"\n"
                          "mapFailedRetrievingImageForAnnotation \"b\" -1002 \"ftp://127.0.0.1/pin.png\"");
    EXPECT_EQ(annotations(), "a,b");
}

TEST_F(AnnotationImage, ValuesThatAreNoStringsAreNoAddresses) {
    view().setDelegate(nullptr);
    run("map.addAnnotations([image('a', 5), image('b', true), image('c', {}), image('d', " + std::string("'") +
        server.url("/pin.png") + "')])");
    runMain();
    load();
    EXPECT_EQ(failures(), "mapFailedRetrievingImageForAnnotation \"a\" -1000 \"nil URL\"\n"
                          "mapFailedRetrievingImageForAnnotation \"b\" -1000 \"nil URL\"\n"
                          "mapFailedRetrievingImageForAnnotation \"c\" -1000 \"nil URL\"");
    EXPECT_EQ(annotations(), "d");
}

TEST_F(AnnotationImage, TheDelegateMakesTheAddressOfTheString) {
    const auto delegate = std::make_shared<AnsweringDelegate>();
    view().setDelegate(delegate);
    delegate->made = id(NSURL::URLWithString(id(server.url("/pin.png").c_str())));
    add("a", "whatever the page says");
    load();
    EXPECT_EQ(annotations(), "a");
    ASSERT_EQ(delegate->asked.size(), 1u);
    EXPECT_EQ(delegate->asked[0][0].as<VeyraView>(), instance().view());
    EXPECT_EQ(delegate->asked[0][1], id("whatever the page says"));
    EXPECT_EQ(delegate->asked[0][2], id(true));
    EXPECT_TRUE(delegate->asked[0][3].isNil());
    add("b", "whatever the page says");
    EXPECT_EQ(annotations(), "a,b") << "the page's string is the name of the image";
    EXPECT_EQ(delegate->asked.size(), 1u);
}

TEST_F(AnnotationImage, ADelegateThatMakesNoAddressIsReported) {
    const auto delegate = std::make_shared<AnsweringDelegate>();
    view().setDelegate(delegate);
    add("a", server.url("/pin.png"));
    load();
    EXPECT_EQ(failures(), "mapFailedRetrievingImageForAnnotation \"a\" -1000 \"nil URL\"");
    EXPECT_EQ(annotations(), "");
}

TEST_F(AnnotationImage, ADelegateThatDoesNotAnswerIsNotAsked) {
    const auto delegate = std::make_shared<NSObject>();
    view().setDelegate(delegate);
    add("a", server.url("/pin.png"));
    load();
    EXPECT_EQ(annotations(), "a");
}

TEST_F(AnnotationImage, CanBeInTheAddressItself) {
    gchar* const encoded = [] {
        const std::string file = pngOfSize(4, 4);
        return g_base64_encode(reinterpret_cast<const guchar*>(file.data()), file.size());
    }();
    add("a", std::string("data:image/png;base64,") + encoded);
    g_free(encoded);
    load();
    ASSERT_NE(imageOf("a"), nullptr);
    EXPECT_EQ(imageOf("a")->pixelWidth(), 4);
    const std::string large(102401, 'x');
    add("b", "data:," + large);
    load();
    EXPECT_EQ(annotations(), "a");
    EXPECT_EQ(failures(), "");
}

TEST_F(AnnotationImage, OfAWaitingAnnotationIsShownEvenWhenThatWasRemoved) {
    view().setVerboseDebugLoggingEnabled(true);
    const CapturedLog log;
    add("a", server.url("/pin.png"));
    run("map.removeAnnotation('a')");
    runMain();
    EXPECT_EQ(log.lines(),
              std::vector<std::string>{"message: Map does not have annotation with Id 'a'; cannot remove"});
    load();
    EXPECT_EQ(annotations(), "a");
}

TEST_F(AnnotationImage, OfTwoAnnotationsOfOneNameShowsBothAndTheLastOneKeepsTheName) {
    add("a", server.url("/pin.png"), "title: 'first'");
    add("a", server.url("/pin.png"), "title: 'second'");
    load();
    EXPECT_EQ(annotations(), "a");
    EXPECT_EQ(onMap(), (std::vector<std::string>{"a", "a"}));
    run("map.removeAnnotation('a')");
    runMain();
    ASSERT_EQ(onMap(), (std::vector<std::string>{"a"}));
    EXPECT_EQ(recordOf("a")->title(), id("first"));
    EXPECT_EQ(annotations(), "");
}

TEST_F(AnnotationImage, ThatArrivesForANameTakenMeanwhileTakesTheName) {
    add("a", server.url("/pin.png"), "title: 'image'");
    run("map.addAnnotation({ latitude: 1, longitude: 2, identifier: 'a', title: 'pin' })");
    runMain();
    EXPECT_EQ(annotations(), "a");
    load();
    EXPECT_EQ(onMap().size(), 2u);
    run("map.removeAnnotation('a')");
    runMain();
    ASSERT_EQ(onMap().size(), 1u);
    EXPECT_EQ(recordOf("a")->title(), id("pin"));
}

TEST_F(AnnotationImage, IsScaledForTheScreen) {
    view().setScreenScale(2);
    add("a", server.url("/pin.png"));
    load();
    EXPECT_EQ(imageOf("a")->scale(), 2);
    EXPECT_EQ(imageOf("a")->size(), (CGSize{8, 4}));
    view().setScreenScale(0); // a host that never said
    add("b", server.url("/pin.png#b"));
    load();
    EXPECT_EQ(imageOf("b")->size(), (CGSize{16, 8}));
}

TEST_F(AnnotationImage, ReusedViewsKeepTheOffsetTheyWereMadeWith) {
    add("a", server.url("/pin.png"), "xOffset: 5");
    load();
    EXPECT_EQ(mapView().viewForAnnotation(recordOf("a"))->centerOffset(), (CGPoint{5, 0}));
    run("map.removeAnnotation('a')");
    add("b", server.url("/pin.png"), "xOffset: 7");
    EXPECT_EQ(mapView().viewForAnnotation(recordOf("b"))->centerOffset(), (CGPoint{5, 0}));
    add("c", server.url("/pin.png"), "xOffset: 9");
    EXPECT_EQ(mapView().viewForAnnotation(recordOf("c"))->centerOffset(), (CGPoint{9, 0}));
}

TEST_F(AnnotationImage, LoadsEndWithTheirMap) {
    server.answer("/silent", {.bytes = "", .delay = 30});
    add("a", server.url("/silent"));
    EXPECT_TRUE(runMainUntil([&] { return server.count("/silent") == 1; }));
    instance().stop();
    EXPECT_TRUE(runMainUntil([&] { return server.abandoned() == 1; }));
    EXPECT_EQ(VeyraView::liveViews(), 0u);
}

TEST_F(AnnotationImage, ManyAtOnceAllArrive) {
    for (int i = 0; i < 100; ++i)
        server.serve("/" + std::to_string(i), pngOfSize(1 + i, 1));
    run("map.addAnnotations(Array.from({ length: 1000 }, (_, i) => image('p' + i, '" + server.url("/") +
        "' + i % 100)))");
    runMain();
    load();
    EXPECT_EQ(run("map.annotations.length"), "1000");
    EXPECT_EQ(imageOf("p799")->pixelWidth(), 100);
    EXPECT_EQ(server.requests().size(), 100u);
}

} // namespace veyra
