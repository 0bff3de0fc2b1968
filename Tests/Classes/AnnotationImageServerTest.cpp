// What servers may do to the images of annotations.
#include "Tests/Classes/AnnotationImageFixture.h"

#include <zlib.h>

namespace veyra {

namespace {

/// A PNG of that many grey pixels a side, all black, which is very small for its size.
std::string bombOfSide(uint32_t side) {
    const auto bigEndian = [](uint32_t value) {
        std::string text;
        for (int shift = 24; shift >= 0; shift -= 8)
            text += static_cast<char>(value >> shift & 0xff);
        return text;
    };
    const auto chunk = [&](const std::string& type, const std::string& data) {
        const std::string body = type + data;
        const auto sum = crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size()));
        return bigEndian(static_cast<uint32_t>(data.size())) + body + bigEndian(static_cast<uint32_t>(sum));
    };
    const std::string rows((size_t{side} / 8 + 1) * side, '\0');
    uLongf size = compressBound(rows.size());
    std::string packed(size, '\0');
    compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(rows.data()), rows.size(),
              9);
    packed.resize(size);
    return "\x89PNG\r\n\x1a\n" +
           chunk("IHDR", bigEndian(side) + bigEndian(side) + std::string("\x01\x00\x00\x00\x00", 5)) +
           chunk("IDAT", packed) + chunk("IEND", "");
}

} // namespace

class AnnotationImageServer : public AnnotationImageFixture {};

TEST_F(AnnotationImageServer, ThatIsSlowIsWaitedFor) {
    server.answer(
        "/slow",
        {.bytes = test::httpAnswer("200 OK", pngOfSize(8, 8)), .delay = 0.1, .pieces = 20, .delayBetweenPieces = 0.01});
    add("slow", server.url("/slow"));
    add("fast", server.url("/pin.png"));
    server.hold(false);
    EXPECT_TRUE(runMainUntil([&] { return recordOf("fast") != nullptr; }));
    EXPECT_EQ(recordOf("slow"), nullptr) << "nobody waits for another's image";
    load();
    EXPECT_EQ(annotations(), "fast,slow");
    EXPECT_EQ(imageOf("slow")->pixelWidth(), 8);
}

TEST_F(AnnotationImageServer, ThatCutsTheBodyOffShowsAPinWithAnEvent) {
    const std::string whole = test::httpAnswer("200 OK", pngOfSize(8, 8));
    server.answer("/cut", {.bytes = whole.substr(0, whole.size() - 20)});
    add("a", server.url("/cut"));
    load();
    EXPECT_EQ(failures(), "mapFailedRetrievingImageForAnnotation \"a\" -1005 \"" + server.url("/cut") + "\"");
    EXPECT_EQ(annotations(), "a");
    EXPECT_EQ(imageOf("a"), nullptr);
}

TEST_F(AnnotationImageServer, ThatHasOnlyTheBeginningOfAFileKeepsItsAnnotationsWaiting) {
    const std::string whole = pngOfSize(40, 40);
    server.serve("/beginning", whole.substr(0, whole.size() - 13));
    add("a", server.url("/beginning"));
    load();
    EXPECT_EQ(annotations(), "");
    EXPECT_EQ(failures(), "");
}

TEST_F(AnnotationImageServer, ThatRedirectsLeadsToTheImage) {
    server.answer("/old", {.bytes = test::httpAnswer("301 Moved", "", "Location: /newer\r\n")});
    server.answer("/newer",
                  {.bytes = test::httpAnswer("302 Found", "", "Location: " + server.url("/pin.png") + "\r\n")});
    add("a", server.url("/old"));
    add("b", server.url("/old"));
    load();
    EXPECT_EQ(annotations(), "a,b");
    EXPECT_EQ(server.count("/old"), 1u);
    EXPECT_EQ(server.count("/pin.png"), 1u);
    add("c", server.url("/pin.png"));
    load();
    EXPECT_EQ(server.count("/pin.png"), 2u) << "the page's string is the name, not where it leads";
}

TEST_F(AnnotationImageServer, ThatRedirectsToTooMuchIsCancelledWithoutAnEvent) {
    server.serve("/more", pngOfLength(102401));
    server.answer("/old", {.bytes = test::httpAnswer("302 Found", "", "Location: /more\r\n")});
    add("a", server.url("/old"));
    load();
    EXPECT_EQ(annotations(), "");
    EXPECT_EQ(failures(), "");
}

TEST_F(AnnotationImageServer, ThatNamesAnotherTypeStillGivesTheImage) {
    server.serve("/page", pngOfSize(8, 8), "text/html");
    server.answer("/untyped", {.bytes = "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(pngOfSize(9, 9).size()) +
                                        "\r\n\r\n" + pngOfSize(9, 9)});
    add("a", server.url("/page"));
    add("b", server.url("/untyped"));
    load();
    EXPECT_EQ(annotations(), "a,b");
}

TEST_F(AnnotationImageServer, ThatSaysNotFoundWithAnImageGivesTheImage) {
    server.answer("/missing.png", {.bytes = test::httpAnswer("404 Not Found", pngOfSize(8, 8))});
    add("a", server.url("/missing.png"));
    load();
    EXPECT_EQ(annotations(), "a");
    EXPECT_EQ(failures(), "");
}

TEST_F(AnnotationImageServer, ThatSendsABombTakesNoMemoryForIt) {
    const std::string bomb = bombOfSide(20000);
    ASSERT_LE(bomb.size(), 102400u);
    server.serve("/bomb", bomb);
    add("a", server.url("/bomb"));
    add("b", server.url("/pin.png"));
    load();
    EXPECT_EQ(annotations(), "b");
    EXPECT_EQ(failures(), "");
}

TEST_F(AnnotationImageServer, ThatEndsWithItsMapWhileAnImageIsDecodedDoesNotMatter) {
    add("a", server.url("/pin.png"));
    server.hold(false);
    EXPECT_TRUE(runMainUntil([&] { return server.count("/pin.png") == 1; }));
    instance().stop();
    settle();
    EXPECT_TRUE(runMainUntil([&] { return VeyraView::liveViews() == 0; }));
}

} // namespace veyra
