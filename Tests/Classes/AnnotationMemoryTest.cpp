// What an annotation costs: the record, its place in the registry and the map's share. Memory of the script engine,
// which the page's own objects take, comes from another allocator and is not counted.
#include "Tests/Classes/ViewFixture.h"

#include <malloc.h>

namespace veyra {

class AnnotationMemory : public ShownMapFixture {
protected:
    static constexpr size_t count = 20000;

    /// Bytes in use for each annotation that the script adds.
    double cost(const std::string& annotation) {
        run("added = Array.from({ length: " + std::to_string(count) + " }, (_, i) => (" + annotation + "))");
        settle();
        const size_t before = mallinfo2().uordblks;
        run("map.addAnnotations(added)");
        settle();
        EXPECT_EQ(run("map.annotations.length"), std::to_string(count));
        return static_cast<double>(mallinfo2().uordblks - before) / count;
    }
};

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST_F(AnnotationMemory, AnAnnotationOutOfSightTakesLessThan500Bytes) {
    const double bytes = cost("{ latitude: 50 + i % 100 / 10, longitude: 60 + i / 1000, identifier: 'place-' + i, "
                              "title: 'Place number ' + i }");
    RecordProperty("bytes", std::to_string(bytes));
    EXPECT_LT(bytes, 500);
}

TEST_F(AnnotationMemory, AnAnnotationInSightTakesLessThan1000Bytes) {
    const double bytes = cost("{ latitude: i % 100 / 50, longitude: i / 10000, identifier: 'place-' + i }");
    RecordProperty("bytes", std::to_string(bytes));
    EXPECT_LT(bytes, 1000);
}
#endif

} // namespace veyra
