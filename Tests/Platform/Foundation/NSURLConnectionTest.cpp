// Loads over HTTP, from a server on a loopback address that says what it is told to.
#include "Tests/Platform/Foundation/URLConnectionFixture.h"
#include "Tests/Support/HTTPServer.h"

#include "Platform/Foundation/DispatchQueue.h"

#include <gio/gio.h>

#include <chrono>
#include <thread>

namespace veyra {

using test::httpAnswer;
using Reports = std::vector<std::string>;

class NSURLConnectionTest : public URLConnection {
protected:
    test::HTTPServer server;
};

TEST_F(NSURLConnectionTest, ReportsTheResponseTheDataAndTheEndInThatOrderOnTheMainQueue) {
    server.serve("/pin.png", "0123456789");
    const Load done = load(server.url("/pin.png"));
    EXPECT_EQ(done.reports, (Reports{"response 10 200", "data", "finished"}));
    EXPECT_EQ(done.data, "0123456789");
    EXPECT_EQ(done.url, server.url("/pin.png"));
}

TEST_F(NSURLConnectionTest, AnnouncesTheLengthThatTheServerAnnounces) {
    for (const int length : {102400, 102401}) {
        const std::string path = "/" + std::to_string(length);
        server.serve(path, std::string(static_cast<size_t>(length), 'x'));
        const Load done = load(server.url(path));
        EXPECT_EQ(done.reports, (Reports{"response " + std::to_string(length) + " 200", "data", "finished"}));
        EXPECT_EQ(done.data.size(), static_cast<size_t>(length));
    }
}

TEST_F(NSURLConnectionTest, AChunkedAnswerHasNoLength) {
    server.answer("/chunked", {.bytes = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                                        "3\r\nabc\r\n4\r\ndefg\r\n0\r\n\r\n"});
    const Load done = load(server.url("/chunked"));
    EXPECT_EQ(done.reports, (Reports{"response -1 200", "data", "finished"}));
    EXPECT_EQ(done.data, "abcdefg");
}

TEST_F(NSURLConnectionTest, AnAnswerThatEndsWithItsConnectionHasNoLength) {
    server.answer("/open", {.bytes = "HTTP/1.0 200 OK\r\n\r\nabc"});
    const Load done = load(server.url("/open"));
    EXPECT_EQ(done.reports, (Reports{"response -1 200", "data", "finished"}));
    EXPECT_EQ(done.data, "abc");
}

TEST_F(NSURLConnectionTest, AnEmptyBodyFinishesWithoutData) {
    server.serve("/empty", "");
    EXPECT_EQ(load(server.url("/empty")).reports, (Reports{"response 0 200", "finished"}));
    server.answer("/none", {.bytes = "HTTP/1.1 204 No Content\r\n\r\n"});
    EXPECT_EQ(load(server.url("/none")).reports, (Reports{"response 0 204", "finished"}));
}

TEST_F(NSURLConnectionTest, APageThatSaysNotFoundIsAResponseLikeAnyOther) {
    const Load done = load(server.url("/nowhere"));
    EXPECT_EQ(done.reports, (Reports{"response 30 404", "data", "finished"}));
    EXPECT_EQ(done.data, "<!doctype html><p>nothing here");
}

TEST_F(NSURLConnectionTest, AsksForNoContentEncodingAndDecodesNone) {
    server.answer("/gzip", {.bytes = httpAnswer("200 OK", "not really gzip", "Content-Encoding: gzip\r\n")});
    const Load done = load(server.url("/gzip"));
    EXPECT_EQ(done.reports, (Reports{"response 15 200", "data", "finished"}));
    EXPECT_EQ(done.data, "not really gzip");
    EXPECT_NE(server.requests().at(0).find("Accept-Encoding: identity\r\n"), std::string::npos);
}

TEST_F(NSURLConnectionTest, FollowsRedirectionsAndThenNamesTheirEnd) {
    server.answer("/old", {.bytes = httpAnswer("302 Found", "", "Location: /newer\r\n")});
    server.answer("/newer", {.bytes = httpAnswer("301 Moved", "moved", "Location: /pin.png\r\n")});
    server.serve("/pin.png", "pin");
    const Load done = load(server.url("/old"));
    EXPECT_EQ(done.reports, (Reports{"response 3 200", "data", "finished"}));
    EXPECT_EQ(done.data, "pin");
    EXPECT_EQ(done.url, server.url("/pin.png"));
}

TEST_F(NSURLConnectionTest, ARedirectionToAPortThatRefusesFailsWithTheNewAddress) {
    const std::string refused = "http://127.0.0.1:" + std::to_string(test::refusedPort()) + "/pin.png";
    server.answer("/old", {.bytes = httpAnswer("302 Found", "", "Location: " + refused + "\r\n")});
    const Load done = load(server.url("/old"));
    EXPECT_EQ(done.reports, (Reports{"failed -1004"}));
    EXPECT_EQ(done.url, refused);
}

TEST_F(NSURLConnectionTest, RedirectionsWithoutEndFail) {
    server.answer("/loop", {.bytes = httpAnswer("302 Found", "", "Location: /loop\r\n")});
    EXPECT_EQ(failure(server.url("/loop")), -1007);
}

TEST_F(NSURLConnectionTest, ARedirectionToAnotherKindOfAddressIsNotFollowed) {
    for (const char* target : {"file:///etc/passwd", "data:,text", "ftp://127.0.0.1/"}) {
        server.answer("/out",
                      {.bytes = httpAnswer("302 Found", "elsewhere", std::string("Location: ") + target + "\r\n")});
        EXPECT_EQ(failure(server.url("/out")), -1002) << target;
    }
}

TEST_F(NSURLConnectionTest, ABodyThatIsCutOffFailsAsALostConnection) {
    server.answer("/cut", {.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nonly this"});
    const Load done = load(server.url("/cut"));
    EXPECT_EQ(done.reports, (Reports{"response 1000 200", "data", "failed -1005"}));
    EXPECT_EQ(done.data, "only this");
    server.answer("/closes", {.bytes = "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 10\r\n\r\nonly this"});
    EXPECT_EQ(load(server.url("/closes")).reports, (Reports{"response 10 200", "data", "failed -1005"}));
}

TEST_F(NSURLConnectionTest, AServerThatClosesWithoutAnAnswerFailsAsALostConnection) {
    server.answer("/nothing", {.bytes = ""});
    EXPECT_EQ(failure(server.url("/nothing")), -1005);
}

TEST_F(NSURLConnectionTest, ASlowServerIsWaitedForAsLongAsItGoesOn) {
    server.answer("/slow",
                  {.bytes = httpAnswer("200 OK", std::string(60, 'x')), .pieces = 6, .delayBetweenPieces = 0.2});
    const Load done = load(server.url("/slow"), 0.6);
    EXPECT_EQ(done.reports.back(), "finished");
    EXPECT_EQ(done.data, std::string(60, 'x'));
}

TEST_F(NSURLConnectionTest, AServerThatNeverAnswersTimesOut) {
    server.answer("/silent", {.bytes = "", .delay = 30});
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(load(server.url("/silent"), 0.3).reports, (Reports{"failed -1001"}));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST_F(NSURLConnectionTest, AServerThatStopsInTheMiddleTimesOut) {
    server.answer("/stalled", {.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nonly this", .closes = false});
    EXPECT_EQ(load(server.url("/stalled"), 0.3).reports, (Reports{"response 1000 200", "data", "failed -1001"}));
}

TEST_F(NSURLConnectionTest, TheTimeoutOfARequestIsAMinuteIfNothingIsSaid) {
    EXPECT_EQ(NSURLRequest::requestWithURL(nullptr)->timeoutInterval(), 60);
}

TEST_F(NSURLConnectionTest, APortThatRefusesFails) {
    EXPECT_EQ(failure("http://127.0.0.1:" + std::to_string(test::refusedPort()) + "/"), -1004);
}

TEST_F(NSURLConnectionTest, WhatIsNoHTTPFails) {
    server.answer("/garbage", {.bytes = "\x01\x02\x03 nonsense\r\n\r\n"});
    EXPECT_NE(failure(server.url("/garbage")), 0);
}

TEST_F(NSURLConnectionTest, AServerThatDoesNotSpeakTLSFailsASecureLoad) {
    std::string address = server.url("/");
    address.replace(0, 4, "https");
    const int code = failure(address);
    EXPECT_TRUE(code == -1200 || code == -1005) << code;
}

TEST_F(NSURLConnectionTest, ACancelledLoadSaysNothingMoreAndGivesItsConnectionUp) {
    server.answer("/large",
                  {.bytes = httpAnswer("200 OK", std::string(1 << 20, 'x')), .pieces = 64, .delayBetweenPieces = 0.05});
    const Load done = load(
        server.url("/large"), [](NSURLConnection& connection) { connection.cancel(); }, 0.3);
    EXPECT_EQ(done.reports, (Reports{"response 1048576 200"}));
    for (int tries = 0; tries < 200 && server.abandoned() == 0; ++tries)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(server.abandoned(), 1u);
}

TEST_F(NSURLConnectionTest, ALoadEndsWhenNobodyOwnsItsConnection) {
    server.answer("/silent", {.bytes = "", .delay = 30});
    load(server.url("/silent"), 60, 0.1); // gives the connection up after a tenth of a second
    for (int tries = 0; tries < 200 && server.abandoned() == 0; ++tries)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(server.abandoned(), 1u);
}

TEST_F(NSURLConnectionTest, ADelegateThatHasGoneIsNotMissed) {
    server.serve("/pin.png", "pin");
    std::shared_ptr<NSURLConnection> connection;
    dispatch_get_main_queue().sync([&] {
        connection = NSURLConnection::initWithRequestDelegate(
            NSURLRequest::requestWithURL(NSURL::URLWithString(id(server.url("/pin.png").c_str()))),
            std::make_shared<NSURLConnectionDelegate>());
    });
    bool isLoading = true;
    for (int tries = 0; tries < 500 && isLoading; ++tries) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        dispatch_get_main_queue().sync([&] { isLoading = connection->isLoading(); });
    }
    EXPECT_FALSE(isLoading);
    dispatch_get_main_queue().sync([&] { connection = nullptr; });
}

TEST_F(NSURLConnectionTest, NoAddressMakesNoConnection) {
    dispatch_get_main_queue().sync([] {
        EXPECT_EQ(NSURLConnection::initWithRequestDelegate(NSURLRequest::requestWithURL(nullptr),
                                                           std::make_shared<NSURLConnectionDelegate>()),
                  nullptr);
    });
}

TEST_F(NSURLConnectionTest, ManyLoadsAtOnceAllEnd) {
    server.serve("/pin.png", "pin");
    std::vector<std::thread> threads;
    std::atomic<int> finished{0};
    for (int i = 0; i < 40; ++i)
        threads.emplace_back([&] { finished += load(server.url("/pin.png")).data == "pin"; });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(finished, 40);
}

} // namespace veyra
