#include "tvmath/compressed_points.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "geometry/xyz.h"
#include "little_endian.h"
#include "step_codes.h"

inline namespace tvmath {
namespace {

constexpr std::size_t first_point_end = 1 + 3 * sizeof(double);
constexpr std::size_t header_end = first_point_end + 3 * sizeof(float);

unsigned char written_method(unsigned char method) {
    if (method <= 3) return method;
    return method <= 5 ? 3 : 0;
}

// In single precision, rounded up: the longest step itself then has a code.
float longest_as_float(double step) {
    if (!(step <= std::numeric_limits<float>::max())) return std::numeric_limits<float>::infinity();
    float const nearest = static_cast<float>(step);
    return nearest < step ? std::nextafter(nearest, std::numeric_limits<float>::infinity()) : nearest;
}

void put_point(std::vector<unsigned char>& data, xyz const& p) {
    put_little_endian(data, p.x);
    put_little_endian(data, p.y);
    put_little_endian(data, p.z);
}

xyz point_at(unsigned char const* from) {
    return {little_endian<double>(from), little_endian<double>(from + 8), little_endian<double>(from + 16)};
}

void encode_steps(unsigned char method, std::vector<xyz> const& points, std::vector<unsigned char>& data) {
    xyz longest;
    for (std::size_t i = 1; i < points.size(); ++i) {
        xyz const d = points[i] - points[i - 1];
        longest.x = std::max(longest.x, std::fabs(d.x));
        longest.y = std::max(longest.y, std::fabs(d.y));
        longest.z = std::max(longest.z, std::fabs(d.z));
    }
    float const m[] = {longest_as_float(longest.x), longest_as_float(longest.y), longest_as_float(longest.z)};
    for (float step : m) put_little_endian(data, step);
    step_codes const x(method, m[0]), y(method, m[1]), z(method, m[2]);
    xyz now = points[0];
    for (std::size_t i = 1; i < points.size(); ++i) {
        step_code const code{x.encode(points[i].x - now.x), y.encode(points[i].y - now.y),
                             z.encode(points[i].z - now.z)};
        put_code(method, code, data);
        now = now + xyz(x.step(code.x), y.step(code.y), z.step(code.z));
    }
}

std::vector<unsigned char> encoded(unsigned char method, std::vector<xyz> const& points) {
    std::vector<unsigned char> data;
    if (points.empty()) return data;
    method = written_method(method);
    data.reserve(header_end + points.size() * 24);
    data.push_back(method);
    if (method == 0) {
        for (xyz const& p : points) put_point(data, p);
    } else {
        put_point(data, points[0]);
        encode_steps(method, points, data);
    }
    return data;
}

std::vector<xyz> decoded(std::vector<unsigned char> const& data) {
    std::vector<xyz> points;
    if (data.size() < first_point_end || data[0] > 3) return points;
    unsigned char const* const from = data.data();
    if (data[0] == 0) {
        for (std::size_t at = 1; data.size() - at >= 24; at += 24) points.push_back(point_at(from + at));
        return points;
    }
    points.push_back(point_at(from + 1));
    if (data.size() < header_end) return points;
    unsigned char const* const steps = from + first_point_end;
    step_codes const x(data[0], little_endian<float>(steps)), y(data[0], little_endian<float>(steps + 4)),
        z(data[0], little_endian<float>(steps + 8));
    std::size_t const size = code_size(data[0]);
    points.reserve(1 + (data.size() - header_end) / size);
    for (std::size_t at = header_end; data.size() - at >= size; at += size) {
        step_code const code = code_at(data[0], from + at);
        points.push_back(points.back() + xyz(x.step(code.x), y.step(code.y), z.step(code.z)));
    }
    return points;
}

template <class list>
std::vector<xyz> coordinates(list const& points) {
    std::vector<xyz> all;
    all.reserve(points.size());
    for (point const& p : points) {
        if (!p.is_3d()) break;
        all.emplace_back(p);
    }
    return all;
}

template <class list>
unsigned char decompressed(std::vector<unsigned char> const& data, list& points) {
    points.clear();
    for (xyz const& p : decoded(data)) points.push_back(p.location(true));
    return data.empty() ? 0 : data[0];
}

}  // namespace

void Compressed_Points::compress(unsigned char method, idioms::array<point> points) {
    compress(method, std::vector<point>(points.begin(), points.end()));
}
void Compressed_Points::compress(unsigned char method, std::vector<point> const& points) {
    data = encoded(method, coordinates(points));
}
void Compressed_Points::compress(unsigned char method, std::list<point> const& points) {
    data = encoded(method, coordinates(points));
}

unsigned char Compressed_Points::decompress(idioms::array<point>& points) const {
    std::vector<point> list;
    unsigned char const method = decompress(list);
    points = idioms::array<point>(static_cast<unsigned int>(list.size()), list.data());
    return method;
}
unsigned char Compressed_Points::decompress(std::vector<point>& points) const {
    return decompressed(data, points);
}
unsigned char Compressed_Points::decompress(std::list<point>& points) const {
    return decompressed(data, points);
}

Compressed_Points& Compressed_Points::operator*=(transform const& t) {
    std::vector<point> points;
    unsigned char const method = decompress(points);
    for (point& p : points) p *= t;
    if (!points.empty()) compress(method, points);
    return *this;
}
Compressed_Points& Compressed_Points::operator/=(transform const& t) {
    std::vector<point> points;
    unsigned char const method = decompress(points);
    for (point& p : points) p /= t;
    if (!points.empty()) compress(method, points);
    return *this;
}

namespace Persistence {
namespace {

constexpr char16_t digits[] = u"0123456789ABCDEF";

constexpr unsigned char value_of(wide_char c) {
    if (c >= u'0' && c <= u'9') return static_cast<unsigned char>(c - u'0');
    return c >= u'A' && c <= u'F' ? static_cast<unsigned char>(c - u'A' + 10) : 0;
}

}  // namespace

wide_string to_ascii(Compressed_Points const& points) {
    wide_string text;
    text.reserve(2 * points.data.size());
    for (unsigned char const byte : points.data) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

void to_compressed_points(wide_char const* text, Compressed_Points& points) {
    points.data.resize(wide_length(text) / 2);
    for (std::size_t i = 0; i < points.data.size(); ++i) {
        points.data[i] = static_cast<unsigned char>(value_of(text[2 * i]) << 4 | value_of(text[2 * i + 1]));
    }
}

}  // namespace Persistence
}  // namespace tvmath
