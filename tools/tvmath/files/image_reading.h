#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "tvmath/image.h"

inline namespace tvmath {

/// The bytes of a picture, of which only so many are read as the picture can have. Nothing is raised, so that
/// a decoder in C may be among the callers.
class byte_source {
public:
    explicit byte_source(std::istream& in);

    /// The next bytes, `count` of them unless the input ends before, which stay to be read.
    std::string_view peek(std::size_t count) noexcept;
    /// The next byte, or -1 at the end.
    int next() noexcept { return begin_ < end_ || refill() ? buffer_[begin_++] : -1; }
    /// Copies the next `count` bytes; false when the input ends before.
    bool take(unsigned char* to, std::size_t count) noexcept;

    /// Lets so many bytes more be read than the 64 MiB of the beginning, which leave room for what comes
    /// beside the pixels.
    void allow(std::uint64_t count) noexcept { allowance_ += count; }
    /// Why the input ended before its end, in one line; empty when it did not.
    std::string trouble() const;

private:
    bool refill() noexcept;

    std::istream& in_;
    std::vector<unsigned char> buffer_;
    std::size_t begin_ = 0, end_ = 0;
    std::uint64_t allowance_ = std::uint64_t{64} << 20;
    bool too_long_ = false;
};

/// Whether a picture of that size is read: not one of no pixels, nor of more than 2^28 pixels, which are 2
/// GiB, or 2^20 to a side. The reason is one line. Then lets `source` read the bytes of so many pixels.
bool settle_size(std::uint64_t width, std::uint64_t height, byte_source& source, std::string& reason);

/// A picture whose rows are still empty, so that memory is taken only for those that arrive.
image rows_to_come(unsigned int rows);
/// Row y of such a picture, `cols` pixels long, to be written.
double* row_to_write(image& picture, unsigned int y, unsigned int cols);

}  // namespace tvmath
