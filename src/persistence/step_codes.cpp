#include "step_codes.h"

#include <cmath>

#include "little_endian.h"

inline namespace tvmath {
namespace {

// A step s has the code (s / longest) scale + offset, cut to an integer: half the levels to either side, so
// that the longest step has the highest code. Of 65536 levels the highest but one: a scale of 32767.5 would
// make rounding decide.
struct method_rule {
    double highest, scale, offset;
};

method_rule rule_of(unsigned char method) {
    switch (method) {
        case 1:
            return {31, 15.5, 16};
        case 2:
            return {255, 127.5, 128};
        default:
            return {65535, 32766.9999999999, 32768};
    }
}

}  // namespace

step_codes::step_codes(unsigned char method, float longest) : longest_(longest) {
    method_rule const rule = rule_of(method);
    highest_ = rule.highest;
    offset_ = rule.offset;
    scale_ = longest_ == 0.0 ? 0 : rule.scale / longest_;
    if (method == 3) return;
    // Adding up, as files have been written: the last bits are those of the sum.
    double const level = method == 2 ? longest_ * 0.00784313725490196 : longest_ * 2 / highest_;
    double step = -longest_;
    for (double code = 0; code <= highest_; ++code, step += level) steps_.push_back(step);
}

std::uint16_t step_codes::encode(double step) const {
    double const t = step * scale_ + offset_;
    if (!(t > 0)) return 0;
    return static_cast<std::uint16_t>(t < highest_ ? t : highest_);
}

std::size_t code_size(unsigned char method) {
    return method == 3 ? 6 : method + 1u;
}

void put_code(unsigned char method, step_code const& code, std::vector<unsigned char>& data) {
    if (method == 1) {
        put_little_endian(data, static_cast<std::uint16_t>(code.x | code.y << 5 | code.z << 10));
        return;
    }
    for (std::uint16_t const c : {code.x, code.y, code.z}) {
        if (method == 2) {
            data.push_back(static_cast<unsigned char>(c));
        } else {
            put_little_endian(data, c);
        }
    }
}

step_code code_at(unsigned char method, unsigned char const* from) {
    if (method == 1) {
        unsigned int const word = little_endian<std::uint16_t>(from);
        return {static_cast<std::uint16_t>(word & 31), static_cast<std::uint16_t>(word >> 5 & 31),
                static_cast<std::uint16_t>(word >> 10 & 31)};
    }
    if (method == 2) return {from[0], from[1], from[2]};
    return {little_endian<std::uint16_t>(from), little_endian<std::uint16_t>(from + 2),
            little_endian<std::uint16_t>(from + 4)};
}

}  // namespace tvmath
