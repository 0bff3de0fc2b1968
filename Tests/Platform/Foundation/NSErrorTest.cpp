#include "Platform/Foundation/NSError.h"

#include <gtest/gtest.h>

namespace veyra {
namespace {

TEST(NSError, KeepsWhatItWasMadeOf) {
    const NSError error(NSURLErrorDomain, -1, {{"message", "Unable"}});
    EXPECT_EQ(error.domain(), NSString("NSURLErrorDomain"));
    EXPECT_EQ(error.code(), -1);
    EXPECT_EQ(error.userInfo().at("message"), id("Unable"));
    EXPECT_EQ(error.isa()->name(), "NSError");
}

TEST(NSError, DescribesItselfWithItsInformationInAlphabeticalOrder) {
    EXPECT_EQ(NSError("D", 7, {}).description(), NSString("Error Domain=D Code=7"));
    EXPECT_EQ(
        NSError(NSURLErrorDomain, -1, {{"message", "Unable to insert."}, {"exception", "Error: no"}, {"n", 2}})
            .description(),
        NSString("Error Domain=NSURLErrorDomain Code=-1 UserInfo={exception=Error: no, message=Unable to insert., "
                 "n=2}"));
}

TEST(NSDictionary, AnswersKeys) {
    const auto dictionary = std::make_shared<NSDictionary>(NSDictionary::Map{{"a", 1}, {"none", nullptr}});
    EXPECT_EQ(dictionary->objectForKey("a"), id(1));
    EXPECT_TRUE(dictionary->objectForKey("b").isNil());
    EXPECT_TRUE(dictionary->objectForKey("none").isNil());
    EXPECT_EQ(dictionary->valueForKey("a"), id(1));
    EXPECT_TRUE(dictionary->valueForKey("b").isNil());
    EXPECT_EQ(dictionary->isa()->name(), "NSDictionary");
}

} // namespace
} // namespace veyra
