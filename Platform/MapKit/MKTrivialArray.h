// A growing array of plain values for large amounts of them: it grows in place where the memory manager can, keeps no
// spare memory once it is complete, and says when there is no memory. Used by one thread while it grows; any thread
// afterwards.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <span>
#include <type_traits>

namespace veyra {

template <class T>
class MKTrivialArray {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    size_t size() const { return _size; }
    std::span<const T> values() const { return {_data.get(), _size}; }
    const T& operator[](size_t index) const { return _data.get()[index]; }
    T& operator[](size_t index) { return _data.get()[index]; }
    T& back() { return _data.get()[_size - 1]; }

    /// Throws std::bad_alloc.
    void append(const T& value) {
        if (_size == _capacity) {
            resizeTo(_capacity < smallest ? smallest : 2 * _capacity);
        }
        _data.get()[_size++] = value;
    }
    /// Appends values that the caller writes. Throws std::bad_alloc.
    std::span<T> extend(size_t count) {
        if (count > _capacity - _size) {
            resizeTo(std::max({smallest, 2 * _capacity, _size + count}));
        }
        _size += count;
        return {_data.get() + _size - count, count};
    }
    /// Gives spare memory back.
    void complete() {
        if (_capacity > _size) {
            resizeTo(_size);
        }
    }
    size_t byteSize() const { return _capacity * sizeof(T); }

private:
    static constexpr size_t smallest = 8;
    struct Free {
        void operator()(T* data) const { std::free(data); }
    };

    void resizeTo(size_t capacity) {
        if (capacity == 0) {
            _data.reset();
        } else {
            void* const moved = std::realloc(static_cast<void*>(_data.get()), capacity * sizeof(T));
            if (!moved) {
                throw std::bad_alloc();
            }
            static_cast<void>(_data.release());
            _data.reset(static_cast<T*>(moved));
        }
        _capacity = capacity;
    }

    std::unique_ptr<T, Free> _data;
    size_t _size = 0, _capacity = 0;
};

} // namespace veyra
