#include "persistence/xml/xml_names.h"

#include <algorithm>

inline namespace tvmath {

namespace {

struct range {
    wide_char first, last;
};

// The larger blocks of what is a letter by the fourth as well as by the fifth edition of XML 1.0, which
// parsers differ in. Source: W3C, Extensible Markup Language (XML) 1.0, fourth edition 2006, appendix B.
constexpr range letters[] = {
    {'A', 'Z'},     {'_', '_'},       {'a', 'z'},       {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x131},
    {0x134, 0x13E}, {0x141, 0x148},   {0x14A, 0x17E},   {0x388, 0x38A},   {0x38E, 0x3A1},   {0x3A3, 0x3CE},
    {0x401, 0x40C}, {0x40E, 0x44F},   {0x451, 0x45C},   {0x45E, 0x481},   {0x5D0, 0x5EA},   {0x621, 0x63A},
    {0x641, 0x64A}, {0x1E00, 0x1E9B}, {0x3041, 0x3094}, {0x30A1, 0x30FA}, {0x4E00, 0x9FA5}, {0xAC00, 0xD7A3}};

bool starts_name(wide_char c) {
    if (c == ':') return true;
    auto const after = std::upper_bound(std::begin(letters), std::end(letters), c,
                                        [](wide_char unit, range const& r) { return unit < r.first; });
    return after != std::begin(letters) && c <= std::prev(after)->last;
}

bool continues_name(wide_char c) {
    return (c >= 'a' && c <= 'z') || c == '-' || c == '.' || (c >= '0' && c <= '9') || starts_name(c);
}

}  // namespace

bool is_xml_name(wide_string_view name) {
    return !name.empty() && starts_name(name.front()) &&
           std::all_of(name.begin() + 1, name.end(), continues_name);
}

}  // namespace tvmath
