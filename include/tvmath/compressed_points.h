#pragma once

#include <list>
#include <vector>

#include "tvmath/array.h"
#include "tvmath/export.h"
#include "tvmath/point.h"
#include "tvmath/transform.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {

/// A measured profile in few bytes: its first point, then the steps from point to point, each axis in as many
/// levels between plus and minus the longest step as the method has bits for.
///
/// The encoder steps by what the decoder will add and codes the way from there to the next point, so that
/// the error of a coordinate stays within a level, 2 m / (levels - 1) with m the longest step along its axis,
/// however long the list is. An axis along which nothing changes stays exact.
///
/// | method | bytes for n points | levels per axis |
/// |---|---|---|
/// | 0 | 1 + 24 n | exact |
/// | 1 | 37 + 2 (n - 1) | 32 |
/// | 2 | 37 + 3 (n - 1) | 256 |
/// | 3 | 37 + 6 (n - 1) | 65536 |
///
/// Points are 3D. Lengths are in the caller's units.
class TVMATH_API Compressed_Points {
public:
    /// The method, then, little-endian: for method 0 the coordinates as doubles; else those of the first
    /// point, the longest steps as floats and the codes, x in the lowest bits of a code of method 1. Empty
    /// for no points.
    std::vector<unsigned char> data;

    /// Replaces the data by that of the list up to its first point that is not 3D. Methods 4 and 5 write
    /// method 3, methods from 6 on write method 0.
    void compress(unsigned char method, idioms::array<point> points);
    void compress(unsigned char method, std::vector<point> const& points);
    void compress(unsigned char method, std::list<point> const& points);

    /// Makes the list that of the data, as locations, and returns the method; 0 with an empty list for no
    /// data. Data that breaks off gives the points before, and data of a method that is not in the table
    /// none.
    unsigned char decompress(idioms::array<point>& points) const;
    unsigned char decompress(std::vector<point>& points) const;
    unsigned char decompress(std::list<point>& points) const;

    /// Maps the points by `t`, or by its inverse, and compresses them again by their method, with a loss
    /// again. Data that gives no points stays as it is.
    Compressed_Points& operator*=(transform const& t);
    Compressed_Points& operator/=(transform const& t);
};

namespace Persistence {

/// Two hexadecimal characters, 0 to 9 and A to F, for each byte, the high half first.
TVMATH_API wide_string to_ascii(Compressed_Points const& points);

/// The bytes of such a text. Every other character, also a lower-case one, counts as 0; an odd last one is
/// ignored. A null pointer gives no data.
TVMATH_API void to_compressed_points(wide_char const* text, Compressed_Points& points);
inline void to_compressed_points(char16_t const* text, Compressed_Points& points) {
    to_compressed_points(text ? as_wide(text).c_str() : nullptr, points);
}

}  // namespace Persistence
}  // namespace tvmath
