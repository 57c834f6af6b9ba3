#include "services/file_text.h"

#include <string>

inline namespace tvmath {

namespace {

constexpr wide_char mark = 0xFEFF;

}  // namespace

file_path to_file_path(wide_string_view name) {
    std::string const utf8 = to_utf8(name);
    return file_path(std::u8string(utf8.begin(), utf8.end()));
}

wide_string to_text(file_path const& name) {
    std::u8string const utf8 = name.u8string();
    return to_wide(std::string(utf8.begin(), utf8.end()));
}

bool read_mark(open_file& file) {
    wide_char unit = 0;
    return read_units(file, &unit, 1) == 1 && unit == mark;
}

bool write_mark(open_file& file) {
    return write_units(file, wide_string_view(&mark, 1));
}

std::uint32_t read_units(open_file& file, wide_char* to, std::uint32_t units) {
    // In place: each unit is made of the two bytes that it then covers.
    auto* const bytes = reinterpret_cast<unsigned char*>(to);
    std::size_t const got = file.read(bytes, 2 * std::size_t{units});
    std::size_t const count = (got + 1) / 2;
    if (got % 2 != 0) bytes[got] = 0;
    for (std::size_t i = 0; i < count; ++i) {
        to[i] = static_cast<wide_char>(bytes[2 * i] | bytes[2 * i + 1] << 8);
    }
    return static_cast<std::uint32_t>(count);
}

bool write_units(open_file& file, wide_string_view text) {
    std::string bytes;
    bytes.reserve(2 * text.size());
    for (wide_char const unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return file.write(bytes.data(), bytes.size());
}

}  // namespace tvmath
