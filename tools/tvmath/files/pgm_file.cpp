#include "pgm_file.h"

#include <algorithm>

inline namespace tvmath {
namespace {

bool is_blank(int c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// To the end of the line, which is taken too.
void skip_comment(byte_source& source) {
    for (int c = source.next(); c >= 0 && c != '\n' && c != '\r';) c = source.next();
}

// The first byte after blanks and comments, or -1 at the end.
int next_word(byte_source& source) {
    for (;;) {
        int const c = source.next();
        if (c == '#') {
            skip_comment(source);
        } else if (!is_blank(c)) {
            return c;
        }
    }
}

// Takes a number with the one blank, or comment, behind it. One beyond all that have a meaning stays at 2^32.
bool read_number(byte_source& source, std::uint64_t& value) {
    int c = next_word(source);
    if (c < '0' || c > '9') return false;
    for (value = 0; c >= '0' && c <= '9'; c = source.next())
        value =
            std::min<std::uint64_t>(10 * value + static_cast<unsigned int>(c - '0'), std::uint64_t{1} << 32);
    if (c == '#') skip_comment(source);
    return c < 0 || c == '#' || is_blank(c);
}

struct pgm_header {
    bool plain = false;
    unsigned int width = 0, height = 0, white = 0;
};

bool read_header(byte_source& source, pgm_header& header, std::string& reason) {
    header.plain = (source.next(), source.next()) == '2';
    std::uint64_t sizes[3] = {};
    char const* const names[] = {"width", "height", "greatest value"};
    for (int i = 0; i < 3; ++i) {
        if (read_number(source, sizes[i])) continue;
        reason = std::string("is a damaged PGM: its ") + names[i] + " is no number";
        return false;
    }
    if (!settle_size(sizes[0], sizes[1], source, reason)) return false;
    if (sizes[2] == 0 || sizes[2] > 65535) {
        reason = "is a damaged PGM: its greatest value is not from 1 to 65535";
        return false;
    }
    header.width = static_cast<unsigned int>(sizes[0]);
    header.height = static_cast<unsigned int>(sizes[1]);
    header.white = static_cast<unsigned int>(sizes[2]);
    return true;
}

// Takes the values of one row; less than a row when the input ends, or when what comes is no number.
void read_values(byte_source& source, pgm_header const& header, std::vector<unsigned char>& bytes,
                 std::vector<std::uint64_t>& values) {
    values.clear();
    if (header.plain) {
        for (std::uint64_t value = 0; values.size() < header.width && read_number(source, value);)
            values.push_back(value);
        return;
    }
    std::size_t const size = header.white > 255 ? 2 : 1;
    bytes.resize(size * header.width);
    if (!source.take(bytes.data(), bytes.size())) return;
    for (std::size_t i = 0; i < bytes.size(); i += size)
        values.push_back(size == 1 ? bytes[i] : 256u * bytes[i] + bytes[i + 1]);
}

}  // namespace

bool is_pgm(std::string_view start) {
    return start.size() > 2 && start[0] == 'P' && (start[1] == '2' || start[1] == '5') &&
           (is_blank(start[2]) || start[2] == '#');
}

bool read_pgm(byte_source& source, image& out, std::string& reason) {
    auto const damaged = [&source, &reason](std::string const& how) {
        reason = source.trouble().empty() ? "is a damaged PGM: " + how : source.trouble();
        return false;
    };
    pgm_header header;
    if (std::string why; !read_header(source, header, why)) {
        reason = source.trouble().empty() ? why : source.trouble();
        return false;
    }
    image picture = rows_to_come(header.height);
    std::vector<unsigned char> bytes;
    std::vector<std::uint64_t> values;
    for (unsigned int y = 0; y < header.height; ++y) {
        auto const place = [y](std::size_t x) {
            return "pixel (" + std::to_string(x) + ", " + std::to_string(y) + ")";
        };
        read_values(source, header, bytes, values);
        double* const row = row_to_write(picture, y, header.width);
        for (std::size_t x = 0; x < values.size(); ++x) {
            if (values[x] > header.white) return damaged(place(x) + " is above the greatest value");
            row[x] = static_cast<double>(values[x]) / header.white;
        }
        if (values.size() < header.width) return damaged(place(values.size()) + " is missing or no number");
    }
    if ((header.plain ? next_word(source) : source.next()) >= 0)
        return damaged("it goes on after its last pixel");
    if (!source.trouble().empty()) return damaged("");
    out = picture;
    return true;
}

}  // namespace tvmath
