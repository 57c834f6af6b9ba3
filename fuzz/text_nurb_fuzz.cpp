#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tvmath/persistence.h"

// Any text, in UTF-8, as a nurb: it is one exactly when its first two items count the others, and the numbers
// are those that the items are on their own. The first byte is an order for which the rest is tried as well.

namespace {

constexpr std::uint32_t none = 999;

void require(bool holds) {
    if (!holds) ::abort();
}

bool same(double a, double b) {
    return a == b || (a != a && b != b);
}

void check(wide_string const& text, bool must_be_one) {
    using namespace Persistence;
    nurb const curve = to_nurb(text.c_str(), nurb(none, 0));
    require(!must_be_one || curve.order() != none);
    if (curve.order() == none) return;
    tokens const items(text.c_str());
    require(items.size() == 2 + curve.order() + 5 * std::size_t{curve.control_points()});
    std::size_t i = 2;
    auto const next = [&] { return to_real(items.token(i++, text.c_str()).c_str(), 0.0); };
    for (std::uint32_t k = 0; k < curve.control_points(); ++k) {
        TQ3RationalPoint4D const p = curve.get_control_point(k);
        for (double const coordinate : {p.x, p.y, p.z, p.w}) require(same(coordinate, next()));
    }
    for (std::uint32_t k = 0; k < curve.knots(); ++k) require(same(curve.get_knot(k), next()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) return 0;
    wide_string const text = to_wide({reinterpret_cast<char const*>(data) + 1, size - 1});
    check(text, false);
    Persistence::to_spline_to_nurb(text.c_str(), nurb());

    std::size_t const order = data[0], numbers = Persistence::tokens(text.c_str()).size();
    if (numbers > order && (numbers - order) % 5 == 0) {
        check(to_wide(std::to_string(order) + " " + std::to_string((numbers - order) / 5) + " ") + text,
              true);
    }
    return 0;
}
