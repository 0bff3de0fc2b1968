// The test program's entry: the behaviours that the pages name become tests of their own.
#include "Tests/Hosts/WebExtension/PageBehaviours.h"

#include <gtest/gtest.h>
#include <gtk/gtk.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    veyra::test::registerPageBehaviours();
    if (!testing::GTEST_FLAG(list_tests))
        gtk_init(&argc, &argv);
    return RUN_ALL_TESTS();
}
