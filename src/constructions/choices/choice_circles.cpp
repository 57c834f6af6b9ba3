#include <limits>

#include "choice_text.h"
#include "tvmath/construction_choice.h"

inline namespace tvmath {

// A circle that does not exist is written as numbers that are none, so that the others keep their places.
wide_string circle_tangent_multi::answers_text() const {
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    wide_string text;
    for (circle const& c : answers_) {
        bool const is_none = c.is_trivial();
        point const center = c.basis(0);
        for (double const number : {center.x(), center.y(), c.radius()}) {
            text += number_item(is_none ? none : number);
        }
    }
    return text;
}

bool circle_tangent_multi::from_text(unsigned short const* text) {
    std::vector<double> numbers;
    if (!read_index_and_numbers(text, 3, index_, numbers)) return false;
    answers_.clear();
    for (std::size_t i = 0; i < numbers.size(); i += 3) {
        answers_.push_back(circle(numbers[i + 2], point(true, numbers[i], numbers[i + 1])));
    }
    return true;
}

}  // namespace tvmath
