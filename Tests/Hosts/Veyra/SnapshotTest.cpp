#include "Tests/Hosts/Veyra/Program.h"

#include <gtest/gtest.h>
#include <libsoup/soup.h>

#include <atomic>
#include <thread>

namespace veyra::test {

namespace {

class Snapshot : public testing::Test {
protected:
    /// Takes the picture of a page of the test data.
    Finished take(const std::string& page, std::vector<std::string> options = {},
                  const std::map<std::string, std::string>& environment = {}) {
        options.insert(options.begin(), {"snapshot", page, "--output", picture});
        return runVeyra(options, environment);
    }
    const TemporaryFolder folder;
    const std::string picture = folder.file("page.png");
};

/// Answers every request with one status and a page, on a thread of its own.
class Server {
public:
    explicit Server(unsigned status) : _status(status) {
        std::atomic<bool> isReady{false};
        _thread = std::thread([this, &isReady] {
            g_main_context_push_thread_default(_context);
            SoupServer* server = soup_server_new(nullptr, nullptr);
            soup_server_add_handler(server, nullptr, answer, this, nullptr);
            soup_server_listen_local(server, 0, SOUP_SERVER_LISTEN_IPV4_ONLY, nullptr);
            GSList* addresses = soup_server_get_uris(server);
            gchar* text = g_uri_to_string(static_cast<GUri*>(addresses->data));
            _address = text;
            g_free(text);
            g_slist_free_full(addresses, reinterpret_cast<GDestroyNotify>(g_uri_unref));
            isReady = true;
            isReady.notify_one();
            g_main_loop_run(_loop);
            g_object_unref(server);
            g_main_context_pop_thread_default(_context);
        });
        isReady.wait(false);
    }
    ~Server() {
        g_main_loop_quit(_loop);
        _thread.join();
        g_main_loop_unref(_loop);
        g_main_context_unref(_context);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    const std::string& address() const { return _address; }

private:
    static void answer(SoupServer*, SoupServerMessage* message, const char*, GHashTable*, gpointer self) {
        const std::string page = "<body style='margin: 0; background: #abcdef'>";
        soup_server_message_set_status(message, static_cast<Server*>(self)->_status, nullptr);
        soup_server_message_set_response(message, "text/html", SOUP_MEMORY_COPY, page.data(), page.size());
    }

    const unsigned _status;
    GMainContext* const _context = g_main_context_new();
    GMainLoop* const _loop = g_main_loop_new(_context, FALSE);
    std::string _address;
    std::thread _thread;
};

} // namespace

TEST_F(Snapshot, ShowsEveryMapOfThePageAtRestThoseOfItsFramesIncluded) {
    const Finished ended = take("maps.html", {"--size", "600x240"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.errors, "");
    const Picture page(picture);
    EXPECT_EQ(page.width(), 600);
    EXPECT_EQ(page.height(), 240);
    for (const int left : {10, 210, 410}) {
        EXPECT_TRUE(page.isWater(left + 20, 120)) << left;
        EXPECT_TRUE(page.isLand(left + 140, 120)) << left;
        EXPECT_EQ(page.at(left - 5, 120), 0x010203u);
        EXPECT_EQ(page.at(left + 90, 230), 0x010203u);
    }
}

TEST_F(Snapshot, HasEveryPixelOfAMapThatChangedInParts) {
    for (const std::string scale : {"1", "2"}) {
        SCOPED_TRACE("scale " + scale);
        const std::vector<std::string> options{"--size", "900x620", "--scale", scale};
        std::vector<std::string> ofPage = options, ofScript{"script", "steps.js", "--output", folder.file("map.png")};
        ofPage.insert(ofPage.end(), {"--wait-for-title", "done"});
        ofScript.insert(ofScript.end(), options.begin(), options.end());
        EXPECT_EQ(take("steps.html", ofPage).status, 0);
        EXPECT_EQ(runVeyra(ofScript).status, 0);
        const Picture page(picture), map(folder.file("map.png"));
        ASSERT_EQ(page.width(), 900 * std::stoi(scale));
        ASSERT_EQ(map.width(), page.width());
        ASSERT_EQ(map.height(), page.height());
        int differences = 0, lastX = 0, lastY = 0;
        for (int y = 0; y < page.height(); ++y) {
            for (int x = 0; x < page.width(); ++x) {
                if (page.at(x, y) != map.at(x, y)) {
                    ++differences;
                    std::tie(lastX, lastY) = std::tie(x, y);
                }
            }
        }
        EXPECT_EQ(differences, 0) << "the last at " << lastX << ", " << lastY;
    }
}

TEST_F(Snapshot, ScaleGivesMorePixelsOfTheSamePage) {
    EXPECT_EQ(take("maps.html", {"--size", "600x240", "--scale", "2"}).status, 0);
    const Picture page(picture);
    EXPECT_EQ(page.width(), 1200);
    EXPECT_EQ(page.height(), 480);
    EXPECT_TRUE(page.isWater(60, 240));
    EXPECT_TRUE(page.isLand(300, 240));
    EXPECT_EQ(page.at(10, 240), 0x010203u);
}

TEST_F(Snapshot, IsOfOneThousandTwentyFourBySevenHundredSixtyEightWithoutASize) {
    EXPECT_EQ(take("title.html").status, 0);
    const Picture page(picture);
    EXPECT_EQ(page.width(), 1024);
    EXPECT_EQ(page.height(), 768);
}

TEST_F(Snapshot, PrintsTheConsoleAndAnswersDialogs) {
    const Finished ended = take("console.html");
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output, "CONSOLE LOG two\n    lines 7\nCONSOLE INFO info\nCONSOLE WARN warn\nCONSOLE ERROR error\n"
                            "CONSOLE DEBUG " +
                                std::string(20000, 'x') +
                                "\nCONSOLE ERROR ReferenceError: Can't find variable: missing (file://" VEYRA_DATA
                                "/console.html:11:10)\n");
    EXPECT_EQ(ended.errors, "");
}

TEST_F(Snapshot, WaitsForATitle) {
    EXPECT_EQ(take("title.html", {"--size", "50x50", "--wait-for-title", "ready"}).status, 0);
    EXPECT_EQ(Picture(picture).at(25, 25), 0x405060u);
    EXPECT_EQ(take("title.html", {"--size", "50x50", "--wait-for-title", "wait"}).status, 0);
    EXPECT_EQ(Picture(picture).at(25, 25), 0x102030u);
}

TEST_F(Snapshot, EndsWithStatus4WhenTheTimeIsOver) {
    const Finished ended = take("title.html", {"--wait-for-title", "steady", "--timeout", "1.5"});
    EXPECT_EQ(ended.status, 4);
    EXPECT_EQ(ended.errors, "veyra: time-out after 1.5 seconds: file://" VEYRA_DATA
                            "/title.html has no title that begins with \"steady\"\n");
    EXPECT_EQ(Picture(picture).width(), 0);
}

TEST_F(Snapshot, LoadsAddresses) {
    const Server server(200);
    EXPECT_EQ(take(server.address(), {"--size", "50x50"}).status, 0);
    EXPECT_EQ(Picture(picture).at(25, 25), 0xabcdefu);
}

TEST_F(Snapshot, EndsWithStatus3ForWhatCannotBeLoaded) {
    const Server server(404);
    const std::string here = "file://" VEYRA_DATA "/";
    const std::pair<std::string, std::string> cases[] = {
        {"missing.html", "cannot load " + here +
                             "missing.html: Error opening file " VEYRA_DATA "/missing.html: No such file or directory"},
        {server.address(), "cannot load " + server.address() + ": HTTP status 404"},
        {"http://127.0.0.1:8/", "cannot load http://127.0.0.1:8/: Could not connect to 127.0.0.1: Connection refused"},
        {"http://127.0.0.1:9/", "cannot load http://127.0.0.1:9/: the web engine refuses the address"},
        {VEYRA_MODULE, std::string("cannot load file://") + VEYRA_MODULE + ": it is no page but "},
    };
    for (const auto& [page, message] : cases) {
        const Finished ended = take(page);
        EXPECT_EQ(ended.status, 3) << page;
        EXPECT_TRUE(ended.errors.starts_with("veyra: " + message)) << ended.errors;
        EXPECT_EQ(Picture(picture).width(), 0);
    }
}

TEST_F(Snapshot, EndsWithStatus5WhenThePictureCannotBeWritten) {
    const Finished ended = runVeyra({"snapshot", "title.html", "--output", "/nowhere/page.png"});
    EXPECT_EQ(ended.status, 5);
    EXPECT_TRUE(ended.errors.starts_with("veyra: cannot write /nowhere/page.png: ")) << ended.errors;
}

TEST_F(Snapshot, SaysWhichPackageIsMissingWhenThereIsNoDisplayAndNoVirtualOne) {
    const Finished ended = take("title.html", {}, {{"PATH", "/nowhere"}});
    EXPECT_EQ(ended.status, 5);
    EXPECT_EQ(ended.errors, "veyra: there is no display, and a virtual one cannot be started: Xvfb is missing "
                            "(Debian package xvfb)\n");
}

TEST_F(Snapshot, SaysThatADisplayCannotBeOpened) {
    const Finished ended = take("title.html", {}, {{"DISPLAY", ":7777"}});
    EXPECT_EQ(ended.status, 5);
    EXPECT_EQ(ended.errors, "veyra: the display :7777 cannot be opened\n");
}

TEST_F(Snapshot, LeavesNothingBehind) {
    const TemporaryFolder empty;
    EXPECT_EQ(take("maps.html", {}, {{"TMPDIR", empty.file("")}}).status, 0);
    GDir* left = g_dir_open(empty.file("").c_str(), 0, nullptr);
    const char* first = g_dir_read_name(left);
    EXPECT_EQ(first, nullptr) << first;
    g_dir_close(left);
}

TEST_F(Snapshot, VerboseLogsWhatAMapIgnores) {
    const std::string page = folder.write("verbose.html", "<object id=map type='application/x-veyra-map'></object>"
                                                          "<script>map.removeOverlay('ring')</script>");
    const std::string message = "Map does not have overlay with Id 'ring'; cannot remove";
    EXPECT_NE(take(page, {"--verbose"}).errors.find(message), std::string::npos);
    EXPECT_EQ(take(page).errors, "");
}

} // namespace veyra::test
