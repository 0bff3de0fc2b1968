// An array that grows by blocks: what is in it is never moved, and little room is left over however much it holds. Not
// safe to share between threads.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

namespace veyra {

template <class T>
class BlockArray {
public:
    T& operator[](size_t index) { return (*_blocks[index / blockSize])[index % blockSize]; }
    const T& operator[](size_t index) const { return (*_blocks[index / blockSize])[index % blockSize]; }
    T& back() { return (*this)[_size - 1]; }
    size_t size() const { return _size; }
    bool empty() const { return _size == 0; }

    /// Adds new elements at the end, or takes elements from there and gives back blocks that are no longer needed.
    void resize(size_t size) {
        for (size_t index = size; index < _size && index < (size + blockSize - 1) / blockSize * blockSize; ++index)
            (*this)[index] = T();
        const size_t blocks = (size + blockSize - 1) / blockSize;
        while (_blocks.size() > blocks)
            _blocks.pop_back();
        while (_blocks.size() < blocks)
            _blocks.push_back(std::make_unique<Block>());
        _size = size;
    }
    void clear() { resize(0); }

private:
    static constexpr size_t blockSize = 256;
    using Block = std::array<T, blockSize>;

    std::vector<std::unique_ptr<Block>> _blocks;
    size_t _size = 0;
};

} // namespace veyra
