#include "image_reading.h"

#include <algorithm>
#include <cstring>
#include <istream>

inline namespace tvmath {

byte_source::byte_source(std::istream& in) : in_(in), buffer_(std::size_t{1} << 16) {}

std::string_view byte_source::peek(std::size_t count) noexcept {
    if (end_ - begin_ < count) refill();
    return {reinterpret_cast<char const*>(buffer_.data()) + begin_, std::min(count, end_ - begin_)};
}

bool byte_source::take(unsigned char* to, std::size_t count) noexcept {
    while (count > 0) {
        if (begin_ == end_ && !refill()) return false;
        std::size_t const part = std::min(count, end_ - begin_);
        std::memcpy(to, buffer_.data() + begin_, part);
        begin_ += part;
        to += part;
        count -= part;
    }
    return true;
}

// Keeps what is held; read() itself catches what a stream raises.
bool byte_source::refill() noexcept {
    std::size_t const held = end_ - begin_;
    if (held > 0) std::memmove(buffer_.data(), buffer_.data() + begin_, held);
    begin_ = 0;
    end_ = held;
    std::uint64_t const room = std::min<std::uint64_t>(buffer_.size() - held, allowance_);
    too_long_ = allowance_ == 0;
    if (room == 0) return false;
    in_.read(reinterpret_cast<char*>(buffer_.data()) + held, static_cast<std::streamsize>(room));
    auto const count = static_cast<std::size_t>(in_.gcount());
    end_ += count;
    allowance_ -= count;
    return count > 0;
}

std::string byte_source::trouble() const {
    if (in_.bad()) return "cannot be read";
    return too_long_ ? "is far longer than its pixels can be" : "";
}

bool settle_size(std::uint64_t width, std::uint64_t height, byte_source& source, std::string& reason) {
    constexpr std::uint64_t most_pixels = std::uint64_t{1} << 28, longest_side = std::uint64_t{1} << 20;
    if (width == 0 || height == 0) {
        reason = "has no pixels";
    } else if (width > longest_side || height > longest_side || width * height > most_pixels) {
        reason = "has " + std::to_string(width) + " x " + std::to_string(height) +
                 " pixels; at most 268435456 are read, and 1048576 to a side";
    } else {
        // 16 bytes are enough for a number with blanks around it, and for 4 channels of 16 bits.
        source.allow(16 * width * height);
        return true;
    }
    return false;
}

image rows_to_come(unsigned int rows) {
    return matrix(rows, vector());
}

double* row_to_write(image& picture, unsigned int y, unsigned int cols) {
    vector& row = picture(y);
    if (row.is_trivial()) row = vector(cols);
    return row.lazycopy_begin();
}

}  // namespace tvmath
