#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "tvmath/persistence.h"

// The first byte picks the kind of a record, the rest is its text in UTF-8: whatever it says, the record that
// comes of it has a text that brings it back.

namespace {

void require(bool holds) {
    if (!holds) ::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) return 0;
    unsigned long long const type = 1ull << data[0] % 27;
    std::unique_ptr<Geometry_Description> const record(Geometry_Description::create(type)),
        again(Geometry_Description::create(type));
    if (!record) return 0;
    wide_string const text = to_wide({reinterpret_cast<char const*>(data) + 1, size - 1});
    if (!Persistence::to_description(text.c_str(), *record)) return 0;

    wide_string const written = Persistence::to_ascii(*record);
    bool const bare = type == Number_Description::type_value || type == Rotation_Description::type_value;
    wide_string const inside = bare ? written : Persistence::token(0, written.c_str());
    // A list without points is written, but an empty text is no list.
    if (inside.empty()) return 0;
    require(Persistence::to_description(inside.c_str(), *again));
    require(Persistence::to_ascii(*again) == written);
    return 0;
}
