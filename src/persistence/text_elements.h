#pragma once

#include <cstddef>
#include <mutex>
#include <utility>
#include <vector>

#include "containers/parallel_for.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {
namespace text_elements {

/// Bytes of the buffer in which a piece of a list is written, on the stack of its thread: some hundred
/// points, about as much work as starting a thread.
inline constexpr std::size_t buffer_bytes = 0x10000;

/// Puts pieces of text together in their order, whatever the order in which they come, and keeps none longer
/// than it must wait for those before it.
class ordered_text {
public:
    /// Appends to `text`, which must be left alone meanwhile.
    ordered_text(wide_string& text, std::size_t pieces) : text_(text), waiting_(pieces) {}

    /// `part` must not be empty. May be called from several threads at once.
    void add(std::size_t piece, wide_string part) {
        std::lock_guard const guard(mutex_);
        // The pieces are about equally long, so the first one tells the length of the whole.
        if (piece == 0) text_.reserve(text_.size() + part.size() * waiting_.size() / 16 * 17);
        waiting_[piece] = std::move(part);
        for (; next_ < waiting_.size() && !waiting_[next_].empty(); ++next_) {
            text_ += std::exchange(waiting_[next_], {});
        }
    }

private:
    wide_string& text_;
    std::mutex mutex_;
    std::vector<wide_string> waiting_;
    std::size_t next_ = 0;
};

/// Appends the texts of elements 0 to `n` - 1. `write(to, i)` prints element i, separators included, into at
/// most `slot` bytes of ASCII, at least one, and returns its end; it may be called from several threads at
/// once.
template <class writer>
void append(wide_string& text, std::size_t n, std::size_t slot, writer const& write) {
    std::size_t const in_piece = buffer_bytes / slot;
    auto const written = [&](std::size_t first, std::size_t last) {
        char buffer[buffer_bytes];
        char* to = buffer;
        for (std::size_t i = first; i < last; ++i) to = write(to, i);
        return wide_string(buffer, to);
    };
    if (n <= in_piece) {
        text += written(0, n);
        return;
    }
    ordered_text whole(text, (n - 1) / in_piece + 1);
    parallel_for(n, in_piece, [&](std::size_t first, std::size_t last) {
        whole.add(first / in_piece, written(first, last));
    });
}

/// The same in brackets, with a blank in front of every element but the first.
template <class writer>
wide_string bracketed(std::size_t n, std::size_t slot, writer const& write) {
    wide_string text(1, '(');
    append(text, n, slot + 1, [&](char* to, std::size_t i) {
        if (i != 0) *to++ = ' ';
        return write(to, i);
    });
    text.push_back(')');
    return text;
}

}  // namespace text_elements
}  // namespace tvmath
