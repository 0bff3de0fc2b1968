#include "Tests/Hosts/WebExtension/PageBehaviours.h"

#include "Tests/Hosts/WebExtension/Browser.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>

namespace veyra::test {

namespace {

struct Page {
    const char* suite;
    const char* script; ///< in Tests/Pages: where the behaviours are
    const char* address;
};

constexpr Page pages[] = {
    {"Element", "element.js", "/pages/element.html"},
    {"ElementUnderStrictPolicy", "element.js", "/pages/element.html?csp"},
    {"Documents", "documents.js", "/pages/documents.html"},
    {"Safety", "safety.js", "/pages/safety.html"},
    {"Hostile", "hostile.js", "/pages/hostile.html"},
    {"Isolation", "isolation.js", "/pages/isolation.html"},
    {"Layout", "layout.js", "/pages/layout.html"},
    {"Arguments", "arguments.js", "/pages/arguments.html"},
    {"Overlays", "overlays.js", "/pages/overlays.html"},
    {"OverlaysUnderStrictPolicy", "overlays.js", "/pages/overlays.html?csp"},
};

class BehaviourTest : public testing::Test {
public:
    BehaviourTest(const char* address, std::string name) : _address(address), _name(std::move(name)) {}
    void TestBody() override {
        static std::string loaded;
        auto& browser = Browser::shared();
        if (loaded != _address || browser.run("return typeof runBehaviour") != "function") {
            ASSERT_NO_FATAL_FAILURE(browser.load(_address));
        }
        loaded = _address;
        EXPECT_EQ(browser.run("return await runBehaviour('" + _name + "')"), "");
    }

private:
    const char* const _address;
    const std::string _name;
};

std::string testName(const std::string& behaviour) {
    std::string name;
    bool isStart = true;
    for (const char c : behaviour) {
        if (!g_ascii_isalnum(c)) {
            isStart = true;
            continue;
        }
        name += isStart ? g_ascii_toupper(c) : c;
        isStart = false;
    }
    return name;
}

} // namespace

void registerPageBehaviours() {
    static const std::regex pattern(R"(\bbehaviour\('([^']+)')");
    for (const Page& page : pages) {
        std::ifstream file(std::string(VEYRA_SOURCE_FOLDER "/Tests/Pages/") + page.script);
        std::ostringstream text;
        text << file.rdbuf();
        const std::string source = text.str();
        for (std::sregex_iterator match(source.begin(), source.end(), pattern), end; match != end; ++match) {
            const std::string name = (*match)[1];
            testing::RegisterTest(
                page.suite, testName(name).c_str(), nullptr, nullptr, __FILE__, __LINE__,
                [address = page.address, name]() -> testing::Test* { return new BehaviourTest(address, name); });
        }
    }
}

} // namespace veyra::test
