// What an annotation costs: the record, its place in the registry and the map's share. Memory of the script engine,
// which the page's own objects take, comes from another allocator and is not counted.
#include "Tests/Classes/ViewFixture.h"

#include <malloc.h>

namespace veyra {

class AnnotationMemory : public ShownMapFixture {
protected:
    static constexpr size_t first = 20000, more = 60000;

    /// Bytes in use for each annotation that the script adds, when they have been drawn. What the first ones need for
    /// all is not counted.
    double cost(const std::string& annotation) {
        run("batch = (start, count) => Array.from({ length: count }, (_, n) => { const i = start + n; return (" +
            annotation + ") }); added = batch(0, " + std::to_string(first) + "); others = batch(" +
            std::to_string(first) + ", " + std::to_string(more) + "); 0");
        const size_t before = bytesAfter("map.addAnnotations(added)");
        const size_t after = bytesAfter("map.addAnnotations(others)");
        EXPECT_EQ(run("map.annotations.length"), std::to_string(first + more));
        return static_cast<double>(after - before) / more;
    }

private:
    size_t bytesAfter(const std::string& call) {
        run(call);
        settle();
        for (int drawn = 0; drawn < 5; ++drawn) {
            onMain([&] { instance().window()->drawFrame(_now += 1); });
            settle();
        }
        const struct mallinfo2 heap = mallinfo2();
        return heap.uordblks + heap.hblkhd;
    }
    double _now = 0;
};

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST_F(AnnotationMemory, AnAnnotationOutOfSightTakesLessThan500Bytes) {
    const double bytes = cost("{ latitude: 50 + i % 100 / 10, longitude: 60 + i / 1000, identifier: 'place-' + i, "
                              "title: 'Place number ' + i }");
    RecordProperty("bytes", std::to_string(bytes));
    EXPECT_LT(bytes, 500);
}

TEST_F(AnnotationMemory, AnAnnotationInSightTakesLessThan500Bytes) {
    const double bytes = cost("{ latitude: i % 100 / 50, longitude: i / 10000, identifier: 'place-' + i }");
    RecordProperty("bytes", std::to_string(bytes));
    EXPECT_LT(bytes, 500);
}

TEST_F(AnnotationMemory, AnAnnotationInSightWithATitleTakesLessThan500Bytes) {
    const double bytes = cost("{ latitude: i % 100 / 50, longitude: i / 10000, identifier: 'place-' + i, "
                              "title: 'Place number ' + i }");
    RecordProperty("bytes", std::to_string(bytes));
    EXPECT_LT(bytes, 500);
}
#endif

} // namespace veyra
