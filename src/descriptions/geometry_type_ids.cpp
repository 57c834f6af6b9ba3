#include <cstddef>

#include "tvmath/geometry_description.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {
namespace {

struct id_row {
    unsigned long long type;
    wide_char text[12] = {};

    template <std::size_t n>
    constexpr id_row(char16_t const (&literal)[n], unsigned long long value) : type(value) {
        static_assert(n <= sizeof text / sizeof *text);
        for (std::size_t i = 0; i < n; ++i) text[i] = literal[i];
    }
};

// A constant, so that nothing is filled at first use. Two dozen rows are searched faster than they are
// hashed.
constexpr id_row id_table[] = {
    {u"None", 0},
    {u"All", 0x7ffffff},
    {u"Pnt", 0x1},
    {u"Trans", 0x2},
    {u"Line", 0x4},
    {u"Cir", 0x8},
    {u"ClSpline", 0x2000},
    {u"ClDat", 0x8000},
    {u"Arc", 0x10},
    {u"Ellp", 0x20},
    {u"OpSpline", 0x400},
    {u"OpDat", 0x4000},
    {u"ORing", 0x40},
    {u"Rect", 0x80},
    {u"Gap", 0x100},
    {u"Slot", 0x200},
    {u"Pln", 0x800},
    {u"Ang", 0x1000},
    {u"Nurb", 0x80000},
    {u"Comp", 0x100000},
    {u"SegClSpline", 0x200000},
    {u"SegOpSpline", 0x400000},
    {u"PtCld", 0x2000000},
    {u"Text", 0x4000000},
};

constexpr wide_char no_id[1] = {};

}  // namespace

unsigned long long Geometry_ID_to_Type(unsigned short const* id) {
    for (id_row const& row : id_table) {
        if (wide_compare(row.text, id) == 0) return row.type;
    }
    return 0;
}

unsigned long long Geometry_ID_to_Type(char16_t const* id) {
    return id ? Geometry_ID_to_Type(as_wide(id).c_str()) : 0;
}

unsigned short const* Geometry_Type_to_ID(unsigned long long type) {
    for (id_row const& row : id_table) {
        if (row.type == type) return row.text;
    }
    return no_id;
}

}  // namespace tvmath
