#include "Platform/MapKit/MKPages.h"

#include <atomic>
#include <new>
#include <sys/mman.h>

namespace veyra {

namespace {

std::atomic<size_t> held{0};

} // namespace

MKPages::MKPages(size_t byteSize, Filling filling) : _byteSize(byteSize) {
    const int flags = MAP_PRIVATE | MAP_ANONYMOUS | (filling == Filling::AtOnce ? MAP_POPULATE : 0);
    void* const pages = mmap(nullptr, byteSize, PROT_READ | PROT_WRITE, flags, -1, 0);
    if (pages == MAP_FAILED) {
        throw std::bad_alloc();
    }
    _data = static_cast<unsigned char*>(pages);
    held += byteSize;
}

MKPages::~MKPages() {
    munmap(_data, _byteSize);
    held -= _byteSize;
}

size_t MKPages::heldBytes() {
    return held;
}

} // namespace veyra
