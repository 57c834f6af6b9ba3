#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

inline namespace tvmath {

/// The steps along one axis that a method has codes for, from -longest to longest.
class step_codes {
public:
    step_codes(unsigned char method, float longest);

    /// The code of a step; of the nearest one at either end when it is longer. A step that is no number has
    /// code 0.
    std::uint16_t encode(double step) const;
    /// What the code stands for.
    double step(std::uint16_t code) const {
        return steps_.empty() ? -longest_ + code * 2.0 * longest_ / highest_ : steps_[code];
    }

private:
    double longest_, scale_, offset_, highest_;
    std::vector<double> steps_;  // of methods with few levels
};

/// The codes of one point.
struct step_code {
    std::uint16_t x, y, z;
};

/// Bytes that the codes of one point take.
std::size_t code_size(unsigned char method);
void put_code(unsigned char method, step_code const& code, std::vector<unsigned char>& data);
step_code code_at(unsigned char method, unsigned char const* from);

}  // namespace tvmath
