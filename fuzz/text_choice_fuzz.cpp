#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>

#include "tvmath/construction_choice.h"
#include "tvmath/persistence.h"

// The first byte picks the kind of a memory of choices, the rest is its text in UTF-8: what comes of it has a
// text that brings the same text back, and takes over a choice from itself without harm.

namespace {

void require(bool holds) {
    if (!holds) ::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static constexpr char const* keys[] = {"BLL", "CTTF", "CTTT", "CTTV", "IEE",
                                           "ILE", "ILC",  "LTM",  "LMM",  "CP3"};
    if (size == 0) return 0;
    std::string utf8 = keys[data[0] % std::size(keys)];
    utf8.append(" ").append(reinterpret_cast<char const*>(data) + 1, size - 1);
    wide_string const text = to_wide(utf8);
    idioms::ref<multi_solution> const read = Persistence::to_multi_solution(text.c_str());
    if (!read) return 0;
    // A list may end at an answer that does not exist, and then be shorter in its text.
    auto const inside = [](wide_string const& t) { return Persistence::token(0, t.c_str()); };
    wide_string const written = Persistence::to_ascii(read);
    idioms::ref<multi_solution> const again = Persistence::to_multi_solution(inside(written).c_str());
    require(!!again);
    wide_string const second = Persistence::to_ascii(again);
    idioms::ref<multi_solution> const third = Persistence::to_multi_solution(inside(second).c_str());
    require(!!third && Persistence::to_ascii(third) == second);

    unsigned int index = 0;
    again->selected(index);
    third->apply_transform(transform(), transform::rotation(0.3));
    third->select(0);
    if (third->update_from(again.address())) third->selected(index);
    return 0;
}
