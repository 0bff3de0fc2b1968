// Memory in pages of its own, zero at first: all of it goes back to the system with the object, which the heap, that
// other memory of the process lies in, does not promise. Owned by one; any thread.
#pragma once

#include <cstddef>

namespace veyra {

class MKPages {
public:
    enum class Filling { OnDemand, AtOnce };

    /// `filling` says when the system finds the memory: piece by piece as it is touched, or, for what is written whole,
    /// at once, which takes less time. Throws std::bad_alloc.
    explicit MKPages(size_t byteSize, Filling filling = Filling::OnDemand);
    MKPages(const MKPages&) = delete;
    MKPages& operator=(const MKPages&) = delete;
    ~MKPages();

    unsigned char* data() const { return _data; }
    /// Bytes in all pages of the process.
    static size_t heldBytes();

private:
    const size_t _byteSize;
    unsigned char* _data;
};

} // namespace veyra
