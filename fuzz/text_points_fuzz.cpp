#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "tvmath/persistence.h"

// Any text, in UTF-8, as a list of points: it has a point for each token, the one that the token is on its
// own.

namespace {

void require(bool holds) {
    if (!holds) ::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace Persistence;
    wide_string const text = to_wide({reinterpret_cast<char const*>(data), size});
    // Of exactly the text's size, so that a step beyond it is seen.
    std::vector<wide_char> const exact(text.c_str(), text.c_str() + wide_length(text.c_str()) + 1);

    std::vector<point> points;
    require(from_ascii(exact.data(), points) == (exact.size() > 1));
    tokens const items(exact.data());
    require(points.size() == items.size());
    vector const numbers = to_vector(exact.data(), vector());
    require(numbers.capacity() == items.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        point const alone = to_point(points[i].is_location(), items.token(i, exact.data()).c_str(), point());
        require(to_ascii(alone, 17) == to_ascii(points[i], 17));  // NaN included
    }
    return 0;
}
