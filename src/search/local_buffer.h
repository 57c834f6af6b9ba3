#pragma once

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <vector>

inline namespace tvmath {

/// A list of plain values that stands in the caller's frame until it holds more than `capacity`; only then it
/// moves to the heap.
template <class type, std::size_t capacity>
class local_buffer {
    static_assert(std::is_trivially_copyable_v<type> && std::is_trivially_default_constructible_v<type>);

public:
    local_buffer() {}  // leaves the room as it is: clearing it would take longer than many a query
    local_buffer(local_buffer const&) = delete;
    local_buffer& operator=(local_buffer const&) = delete;

    bool empty() const { return end_ == begin_; }
    type* begin() { return begin_; }
    type* end() { return end_; }

    /// Room behind the last value, to be written to and then kept or not: without a copy, and without a jump
    /// that could be guessed wrong.
    type& room() {
        if (end_ == limit_) grow();
        return *end_;
    }
    void keep_if(bool is_wanted) { end_ += is_wanted; }
    void push_back(type const& value) {
        room() = value;
        keep_if(true);
    }
    /// Takes the last value off; there must be one. It stays in its place until the next one is pushed.
    type const& pop_back() { return *--end_; }

private:
    [[gnu::noinline, gnu::cold]] void grow() {
        std::size_t const size = static_cast<std::size_t>(end_ - begin_);
        std::vector<type> larger(2 * size);
        std::copy(begin_, end_, larger.begin());
        on_heap_.swap(larger);
        begin_ = on_heap_.data();
        end_ = begin_ + size;
        limit_ = begin_ + on_heap_.size();
    }

    type here_[capacity];
    std::vector<type> on_heap_;
    type *begin_ = here_, *end_ = here_, *limit_ = here_ + capacity;
};

}  // namespace tvmath
