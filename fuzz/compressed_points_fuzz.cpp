// Any text and any bytes as compressed points: what is decoded fits into the bytes, and bytes survive the
// text.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <list>
#include <vector>

#include "tvmath/compressed_points.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    Compressed_Points points;
    points.data.assign(bytes, bytes + size);
    std::vector<point> list;
    if (points.decompress(list) != (size == 0 ? 0 : bytes[0]) || list.size() > size) std::abort();
    Compressed_Points again;
    Persistence::to_compressed_points(Persistence::to_ascii(points).c_str(), again);
    if (again.data != points.data) std::abort();
    points *= transform::translation(point(false, 1, 2, 3));

    wide_string text;
    for (std::size_t i = 0; i + 1 < size; i += 2) {
        text += static_cast<wide_char>(bytes[i] | bytes[i + 1] << 8);
    }
    Persistence::to_compressed_points(text.c_str(), again);
    std::list<point> read;
    again.decompress(read);
    return 0;
}
