#include "image_file.h"

#include <fstream>
#include <iostream>
#include <string_view>

#include "image_reading.h"
#include "pgm_file.h"
#include "png_file.h"
#include "point_file.h"

inline namespace tvmath {
namespace {

using namespace std::string_view_literals;

// What people have instead, so that they are told what to convert.
struct {
    std::string_view start, name;
} constexpr foreign[] = {{"\xFF\xD8\xFF"sv, "JPEG"},
                         {"BM"sv, "BMP"},
                         {"II*\0"sv, "TIFF"},
                         {"MM\0*"sv, "TIFF"},
                         {"GIF8"sv, "GIF"},
                         {"P1"sv, "PBM"},
                         {"P4"sv, "PBM"},
                         {"P3"sv, "PPM"},
                         {"P6"sv, "PPM"},
                         {"P7"sv, "PAM"},
                         {"\0\0\0\fjP"sv, "JPEG 2000"}};

}  // namespace

bool read_image(std::istream& in, image& out, std::string& reason) {
    byte_source source(in);
    std::string_view const start = source.peek(8);
    if (start.empty()) {
        reason = source.trouble().empty() ? "is empty" : source.trouble();
        return false;
    }
    if (start.starts_with("\x89PNG")) return read_png(source, out, reason);
    if (is_pgm(start)) return read_pgm(source, out, reason);
    reason = "is neither a PNG nor a PGM picture";
    for (auto const& kind : foreign) {
        if (!start.starts_with(kind.start)) continue;
        reason = "seems to be a " + std::string(kind.name) + " picture; only PNG and PGM are read";
        break;
    }
    return false;
}

bool read_image_file(std::string const& name, image& out, std::string& reason) {
    if (name == "-") return read_image(std::cin, out, reason);
    std::ifstream file;
    read_error error;
    if (open_input(name, file, error)) return read_image(file, out, reason);
    reason = error.reason;
    return false;
}

}  // namespace tvmath
