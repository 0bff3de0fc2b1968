#include "Platform/Foundation/NSAssertionHandler.h"

#include "Tests/Platform/Foundation/CapturedLog.h"
#include "Tests/Platform/Foundation/Raised.h"

#include <gtest/gtest.h>

#include <thread>

namespace veyra {
namespace {

class Recording final : public NSAssertionHandler {
public:
    explicit Recording(std::string& record) : _record(record) {}
    void handleFailureInFunction(const NSString& function, const NSString& file, int line,
                                 const NSString& description) override {
        _record = function.utf8() + "|" + file.utf8() + "|" + std::to_string(line) + "|" + description.utf8();
    }

private:
    std::string& _record;
};

TEST(NSAssertionHandler, LogsTheFailureAndRaises) {
    const CapturedLog log;
    EXPECT_EQ(raisedBy([] {
                  NSAssertionHandler::currentHandler().handleFailureInFunction("BOOL Check(...)", "Checks", 18,
                                                                               "100% wrong");
              }),
              "NSInternalInconsistencyException: 100% wrong");
    EXPECT_EQ(log.lines(),
              std::vector<std::string>{"message: *** Assertion failure in BOOL Check(...), Checks:18: 100% wrong"});
}

TEST(NSAssertionHandler, MayBeReplacedForOneThread) {
    std::string record;
    EXPECT_EQ(NSAssertionHandler::setCurrentHandler(std::make_unique<Recording>(record)), nullptr);
    NSAssertionHandler* const replaced = &NSAssertionHandler::currentHandler();
    NSAssertionHandler* ofOtherThread = nullptr;
    std::thread([&] { ofOtherThread = &NSAssertionHandler::currentHandler(); }).join();
    EXPECT_NE(ofOtherThread, replaced);

    replaced->handleFailureInFunction("f", "F", 1, "d");
    EXPECT_EQ(record, "f|F|1|d");

    const auto former = NSAssertionHandler::setCurrentHandler(nullptr);
    EXPECT_EQ(former.get(), replaced);
    EXPECT_EQ(&NSAssertionHandler::currentHandler(), ofOtherThread);
}

TEST(NSException, CarriesNameAndReason) {
    const NSException exception(NSRangeException, "r\xc3\xa9"
                                                  "ason");
    EXPECT_EQ(exception.name(), "NSRangeException");
    EXPECT_EQ(exception.reason(), NSString("r\xc3\xa9"
                                           "ason"));
    EXPECT_STREQ(exception.what(), "NSRangeException: r\xc3\xa9"
                                   "ason");
}

} // namespace
} // namespace veyra
