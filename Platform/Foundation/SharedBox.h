// A constant value that copies share: one word, where std::shared_ptr takes two. What is moved from is empty. Any
// thread may use any copy.
#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

namespace veyra {

template <class T>
class SharedBox {
public:
    explicit SharedBox(T value) : _node(new Node{1, std::move(value)}) {}
    SharedBox(const SharedBox& other) noexcept : _node(other._node) {
        if (_node)
            _node->references.fetch_add(1, std::memory_order_relaxed);
    }
    SharedBox(SharedBox&& other) noexcept : _node(std::exchange(other._node, nullptr)) {}
    SharedBox& operator=(SharedBox other) noexcept {
        std::swap(_node, other._node);
        return *this;
    }
    ~SharedBox() {
        if (_node && _node->references.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete _node;
    }

    /// Null when empty.
    const T* get() const { return _node ? &_node->value : nullptr; }

private:
    struct Node {
        std::atomic<uint32_t> references;
        const T value;
    };
    Node* _node;
};

} // namespace veyra
