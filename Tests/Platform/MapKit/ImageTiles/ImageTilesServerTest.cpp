// What a map does with servers that are slow, say no, or make no sense.
#include "Platform/MapKit/ImageTiles/MKImageLoader.h"
#include "Tests/Platform/MapKit/ImageTiles/ImageTilesFixture.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace veyra {

namespace {

using test::coloredTile;
using test::TileAnswer;
using test::tileColor;
using test::TileRequest;

class ImageTilesServer : public ImageTilesTest {
protected:
    /// Every answer comes with these header fields.
    void answerWith(const std::string& fields) {
        server->setHandler([fields](const TileRequest& request) {
            TileAnswer answer = coloredTile(request);
            answer.fields = fields;
            return answer;
        });
    }
    /// Every answer is this.
    void answer(const TileAnswer& same) {
        server->setHandler([same](const TileRequest&) { return same; });
    }
    static TileAnswer status(const std::string& line) { return {.status = line, .body = "no", .fields = {}}; }
    /// The line that the log has for a failure.
    std::string loggedReason() const {
        for (const std::string& line : log.lines()) {
            if (line.find("a tile cannot be drawn") != std::string::npos) {
                return line.substr(line.rfind(".png: ") + 6);
            }
        }
        return "";
    }
};

constexpr uint32_t world = 0x00ff00;

} // namespace

TEST_F(ImageTilesServer, IsAskedForSixImagesAtATime) {
    server->setHandler([](const TileRequest&) { return TileAnswer{.body = {}, .fields = {}, .delay = 1000}; });
    useServer();
    window->setSize({1024, 1024}, 1);
    framesUntil([&] { return server->mostAtOnce() == 6; });
    const auto start = std::chrono::steady_clock::now();
    framesUntil([&] { return std::chrono::steady_clock::now() - start > std::chrono::milliseconds(300); });
    EXPECT_EQ(server->count(), 6u) << "none is asked for beyond those";
}

TEST_F(ImageTilesServer, WhatHasLeftTheViewIsCancelled) {
    useServer();
    show({512, 512});
    server->setHandler([](const TileRequest& request) {
        TileAnswer answer = coloredTile(request);
        answer.delay = request.zoom == 8 ? 1000 : 0;
        return answer;
    });
    showTile(8, 30, 80);
    framesUntil([&] { return server->countOfZoom(8) == 6; });
    showTile(9, 200, 300);
    settle();
    framesUntil([&] { return server->abandoned() == 6; });
    EXPECT_EQ(pixelAt(2, 2), tileColor(9, 200, 300));
    EXPECT_EQ(server->countOfZoom(8), 6u);
}

TEST_F(ImageTilesServer, AMapThatGoesCancelsItsRequests) {
    server->setHandler([](const TileRequest&) { return TileAnswer{.body = {}, .fields = {}, .delay = 1000}; });
    useServer();
    window->setSize({1024, 1024}, 1);
    framesUntil([&] { return server->count() == 6; });
    window.reset();
    host.reset();
    map.reset();
    const auto start = std::chrono::steady_clock::now();
    while (server->abandoned() < 6) {
        runQueue();
        ASSERT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    }
    map = UIView::make<MKMapView>({{0, 0}, {1, 1}});
    host = UIView::make<HostView>({{0, 0}, {1, 1}});
}

TEST_F(ImageTilesServer, DownloadsKeepTheMapFromResting) {
    server->setHandler([](const TileRequest& request) {
        TileAnswer answer = coloredTile(request);
        answer.delay = 0.15;
        return answer;
    });
    useServer();
    window->setSize({300, 300}, 1);
    frames(5);
    EXPECT_FALSE(map->isIdle());
    EXPECT_FALSE(window->isIdle());
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart"}));
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFinish"}));
}

TEST_F(ImageTilesServer, AFailureIsReportedOnceAndTheWorldShowsThrough) {
    answer(status("404 Not Found"));
    useServer();
    window->setSize({900, 700}, 1);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFail MKErrorDomain"}));
    EXPECT_EQ(pixelAt(450, 350), world);
    EXPECT_EQ(loggedReason(), "the server answers with status 404");
    EXPECT_EQ(log.lines().size(), 1u);
    const auto requests = server->requests();
    std::vector<std::string> paths;
    for (const TileRequest& request : requests) {
        paths.push_back(request.path);
    }
    std::sort(paths.begin(), paths.end());
    EXPECT_EQ(std::adjacent_find(paths.begin(), paths.end()), paths.end()) << "a 404 is not asked for again";
}

TEST_F(ImageTilesServer, OneMissingImageLeavesTheOthers) {
    server->setHandler([](const TileRequest& request) {
        return request.zoom == 4 && request.column == 7 ? status("404 Not Found") : coloredTile(request);
    });
    useServer({.minimumZoom = 4, .attribution = {}});
    show({512, 512});
    showTile(4, 6, 5);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFail MKErrorDomain"}));
    EXPECT_EQ(pixelAt(2, 2), tileColor(4, 6, 5));
    EXPECT_EQ(pixelAt(258, 2), world);
}

TEST_F(ImageTilesServer, AnAnswerWithoutContentIsNoFailure) {
    answer({.status = "204 No Content", .body = {}, .fields = {}});
    useServer();
    window->setSize({300, 300}, 1);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFinish"}));
    EXPECT_EQ(pixelAt(150, 150), world);
}

TEST_F(ImageTilesServer, GarbageAndPagesAreFailures) {
    answer({.body = std::string(3000, '\7'), .fields = {}});
    useServer();
    window->setSize({300, 300}, 1);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFail MKErrorDomain"}));
    EXPECT_EQ(loggedReason(), "the bytes are no PNG, JPEG or WebP picture");
    EXPECT_EQ(pixelAt(150, 150), world);
}

TEST_F(ImageTilesServer, APageInPlaceOfAnImageIsAFailure) {
    answer({.body = "<!doctype html><title>Log in</title>", .fields = "Content-Type: text/html\r\n"});
    useServer();
    window->setSize({300, 300}, 1);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFail MKErrorDomain"}));
    EXPECT_EQ(pixelAt(150, 150), world);
}

TEST_F(ImageTilesServer, ConnectionsThatBreakAreTriedAgainAndThenFail) {
    answer({.body = {}, .fields = {}, .resets = true});
    useServer();
    window->setSize({200, 200}, 1);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFail MKErrorDomain"}));
    EXPECT_EQ(loggedReason(), "the connection was lost");
    EXPECT_EQ(pixelAt(100, 100), world);
}

TEST_F(ImageTilesServer, AnAnswerThatStopsTooEarlyIsLost) {
    TileAnswer cut = {.body = test::pictureOf(0x123456).substr(0, 300), .fields = {}, .announced = 5000};
    answer(cut);
    useServer();
    window->setSize({200, 200}, 1);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFail MKErrorDomain"}));
}

TEST_F(ImageTilesServer, AHostThatTakesNoConnectionFailsQuickly) {
    const std::string origin = server->origin();
    useServer();
    server.reset();
    const auto start = std::chrono::steady_clock::now();
    window->setSize({900, 700}, 1);
    settle();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFail MKErrorDomain"}));
    EXPECT_EQ(loggedReason(), "the host takes no connection");
    EXPECT_EQ(pixelAt(450, 350), world);
}

TEST_F(ImageTilesServer, ASlipIsTriedAgainAfterAWhile) {
    std::atomic<int> asked{0};
    std::vector<std::chrono::steady_clock::time_point> times;
    std::mutex mutex;
    server->setHandler([&](const TileRequest& request) {
        if (request.path == "/0/0/0.png") {
            const std::lock_guard guard(mutex);
            times.push_back(std::chrono::steady_clock::now());
            return ++asked < 3 ? status("503 Service Unavailable") : coloredTile(request);
        }
        return coloredTile(request);
    });
    useServer({.maximumZoom = 0, .attribution = {}});
    window->setSize({256, 256}, 1);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFinish"}));
    EXPECT_EQ(pixelAt(128, 128), tileColor(0, 0, 0));
    ASSERT_EQ(times.size(), 3u);
    EXPECT_GE(times[1] - times[0], std::chrono::milliseconds(390));
    EXPECT_GE(times[2] - times[1], std::chrono::milliseconds(790)) << "the second pause is longer";
}

TEST_F(ImageTilesServer, AServerThatAsksForPatienceIsLeftAloneForSoLong) {
    std::vector<std::chrono::steady_clock::time_point> times;
    std::mutex mutex;
    server->setHandler([&](const TileRequest& request) {
        const std::lock_guard guard(mutex);
        times.push_back(std::chrono::steady_clock::now());
        TileAnswer answer = times.size() == 1 ? status("429 Too Many Requests") : coloredTile(request);
        answer.fields = times.size() == 1 ? "Retry-After: 1\r\n" : "";
        return answer;
    });
    useServer({.maximumZoom = 0, .attribution = {}});
    window->setSize({256, 256}, 1);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFinish"}));
    ASSERT_EQ(times.size(), 2u);
    EXPECT_GE(times[1] - times[0], std::chrono::milliseconds(990));
}

TEST_F(ImageTilesServer, AServerThatAsksForLongPatienceFailsAtOnce) {
    TileAnswer wait = status("503 Service Unavailable");
    wait.fields = "Retry-After: 3600\r\n";
    answer(wait);
    useServer({.maximumZoom = 0, .attribution = {}});
    const auto start = std::chrono::steady_clock::now();
    window->setSize({256, 256}, 1);
    settle();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFail MKErrorDomain"}));
    EXPECT_EQ(server->count(), 1u);
}

TEST_F(ImageTilesServer, RedirectionsAreFollowed) {
    server->setHandler([](const TileRequest& request) {
        TileAnswer answer = coloredTile({});
        if (request.path != "/elsewhere") {
            answer = {.status = "302 Found", .body = "", .fields = "Location: /elsewhere\r\n"};
        }
        return answer;
    });
    useServer({.maximumZoom = 0, .attribution = {}});
    show({256, 256});
    EXPECT_EQ(pixelAt(128, 128), tileColor(0, 0, 0));
}

TEST_F(ImageTilesServer, RedirectionsWithoutEndAndOutOfTheNetworkFail) {
    answer({.status = "302 Found", .body = "", .fields = "Location: /again\r\n"});
    useServer({.maximumZoom = 0, .attribution = {}});
    window->setSize({256, 256}, 1);
    settle();
    EXPECT_EQ(loggedReason(), "it leads from one address to the next without end");
    answer({.status = "302 Found", .body = "", .fields = "Location: file:///etc/hostname\r\n"});
    useServer({.maximumZoom = 0, .attribution = {}}, "/other/{z}/{x}/{y}.png");
    settle();
    ASSERT_EQ(log.lines().size(), 2u);
    EXPECT_TRUE(log.lines()[1].ends_with("it leads to an address of another kind")) << log.lines()[1];
    EXPECT_EQ(pixelAt(128, 128), world);
}

TEST_F(ImageTilesServer, WhatFailedIsLeftAloneForAWhileHoweverTheMapMoves) {
    answer(status("404 Not Found"));
    useServer({.maximumZoom = 0, .attribution = {}});
    window->setSize({300, 300}, 1);
    settle();
    for (int i = 0; i < 10; ++i) {
        map->setCenterCoordinate({1.0 * i, 3.0 * i});
        settle();
    }
    EXPECT_EQ(server->count(), 1u);
}

TEST_F(ImageTilesServer, TilesThatFailedComeOnceTheServerIsBack) {
    answer(status("503 Service Unavailable"));
    useServer({.maximumZoom = 0, .attribution = {}});
    window->setSize({300, 300}, 1);
    settle();
    EXPECT_EQ(pixelAt(150, 150), world);
    server->setHandler(coloredTile);
    delegate->calls.clear();
    framesUntil([&] { return pixelAt(150, 150) == tileColor(0, 0, 0); }); // without anybody touching the map
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFinish"}));
}

TEST_F(ImageTilesServer, AFreshImageIsNotAskedForAgain) {
    answerWith("Cache-Control: max-age=1000\r\n");
    useServer({.maximumZoom = 0, .attribution = {}});
    show({300, 300});
    EXPECT_EQ(server->count(), 1u);
    forgetMemory();
    useServer({.maximumZoom = 0, .attribution = {}});
    settle();
    EXPECT_EQ(server->count(), 1u);
    EXPECT_EQ(pixelAt(150, 150), tileColor(0, 0, 0));
}

TEST_F(ImageTilesServer, AStaleImageIsAskedForWithItsTagAndKeptWhenItHasNotChanged) {
    server->setHandler([](const TileRequest& request) {
        TileAnswer answer = coloredTile(request);
        answer.fields = "Cache-Control: max-age=0\r\nETag: \"one\"\r\nLast-Modified: Tue, 14 Nov 2023 22:13:20 GMT\r\n";
        if (request.field("If-None-Match") == "\"one\"" &&
            request.field("If-Modified-Since") == "Tue, 14 Nov 2023 22:13:20 GMT") {
            answer.status = "304 Not Modified";
            answer.body.clear();
            answer.fields = "Cache-Control: max-age=1000\r\nETag: \"one\"\r\n";
        }
        return answer;
    });
    for (int i = 0; i < 3; ++i) {
        forgetMemory();
        useServer({.maximumZoom = 0, .attribution = {}});
        show({300, 300});
        settle();
        EXPECT_EQ(pixelAt(150, 150), tileColor(0, 0, 0));
    }
    ASSERT_EQ(server->count(), 2u) << "the second answer made it fresh";
    EXPECT_EQ(server->requests()[0].field("If-None-Match"), "");
    EXPECT_EQ(server->requests()[1].field("If-None-Match"), "\"one\"");
}

TEST_F(ImageTilesServer, AnImageThatHasChangedReplacesTheOldOne) {
    server->setHandler([](const TileRequest& request) {
        TileAnswer answer;
        answer.body = test::pictureOf(request.field("If-None-Match").empty() ? 0x111111 : 0x222222);
        answer.fields = "Cache-Control: no-cache\r\nETag: \"one\"\r\n";
        return answer;
    });
    useServer({.maximumZoom = 0, .attribution = {}});
    show({300, 300});
    EXPECT_EQ(pixelAt(150, 150), 0x111111u);
    forgetMemory();
    useServer({.maximumZoom = 0, .attribution = {}});
    settle();
    EXPECT_EQ(pixelAt(150, 150), 0x222222u);
}

TEST_F(ImageTilesServer, NothingIsStoredThatMustNotBe) {
    answerWith("Cache-Control: no-store\r\nETag: \"one\"\r\n");
    useServer({.maximumZoom = 0, .attribution = {}});
    show({300, 300});
    EXPECT_FALSE(std::filesystem::exists(folder / "cache"));
    forgetMemory();
    useServer({.maximumZoom = 0, .attribution = {}});
    settle();
    ASSERT_EQ(server->count(), 2u);
    EXPECT_EQ(server->requests()[1].field("If-None-Match"), "");
}

TEST_F(ImageTilesServer, WithoutTheServerStaleImagesAreShown) {
    answerWith("Cache-Control: max-age=0\r\nETag: \"one\"\r\n");
    useServer({.maximumZoom = 0, .attribution = {}});
    show({300, 300});
    answer(status("500 Internal Server Error"));
    forgetMemory();
    useServer({.maximumZoom = 0, .attribution = {}});
    settle();
    EXPECT_EQ(server->count(), 2u);
    EXPECT_EQ(pixelAt(150, 150), tileColor(0, 0, 0));
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFinish"}));
}

TEST_F(ImageTilesServer, AnAnswerThatIsTooLongIsCutOff) {
    TileAnswer endless{.body = std::string(9 << 20, 'x'), .fields = {}};
    answer(endless);
    useServer({.maximumZoom = 0, .attribution = {}});
    window->setSize({300, 300}, 1);
    settle();
    EXPECT_EQ(loggedReason(), "the answer is too long");
}

TEST_F(ImageTilesServer, KeysInAddressesAreNotLogged) {
    answer(status("403 Forbidden"));
    useServer({}, "/{z}/{x}/{y}.png?key=secret");
    window->setSize({300, 300}, 1);
    settle();
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].find("secret"), std::string::npos);
    EXPECT_NE(server->requests()[0].path.find("?key=secret"), std::string::npos);
}

} // namespace veyra
