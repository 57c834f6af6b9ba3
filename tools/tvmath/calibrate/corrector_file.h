#pragma once

#include <string>
#include <variant>

#include "exit_status.h"
#include "tvmath/flatness_corrector.h"
#include "tvmath/screen_corrector.h"
#include "tvmath/telecentricity_corrector.h"

inline namespace tvmath {

enum class corrector_kind { screen, flatness, telecentricity };

/// One of the three, in the order of `corrector_kind`.
using any_corrector = std::variant<screen_corrector, flatness_corrector, telecentricity_corrector>;

inline corrector_kind kind_of(any_corrector const& corrector) {
    return static_cast<corrector_kind>(corrector.index());
}

/// The word for a kind in files and on the command line: "screen".
char const* corrector_name(corrector_kind kind);
/// False for a word of no kind.
bool find_corrector_kind(std::string const& word, corrector_kind& kind);

/// The word for its kind and its text form with all digits, on one line.
std::string corrector_text(any_corrector const& corrector);

/// Why a file of the first kind does not serve where one of the second is wanted.
std::string corrector_mismatch(std::string const& name, corrector_kind kind, corrector_kind wanted);

/// Reads that text. Without the word the kind follows from the shape: only a screen's has two lists of
/// coefficients, a flatness's one, a telecentricity's none. Returns true and sets `corrector`; returns false
/// and says in one line why for a text that is not, to its last number, that of a corrector which does
/// something.
bool read_corrector_text(std::string text, any_corrector& corrector, std::string& reason);

/// The same for the file of that name, or for standard input when it is "-". `reason` begins with the name.
exit_status read_corrector_file(std::string const& name, any_corrector& corrector, std::string& reason);

/// The same for a file that holds one of that kind; `unreadable_input` for another.
template <class corrector_type>
exit_status read_corrector_file(std::string const& name, corrector_type& corrector, std::string& reason) {
    any_corrector any;
    exit_status const status = read_corrector_file(name, any, reason);
    if (status != exit_status::done) return status;
    auto const* const wanted = std::get_if<corrector_type>(&any);
    if (wanted) {
        corrector = *wanted;
        return status;
    }
    reason = corrector_mismatch(name, kind_of(any), kind_of(corrector_type()));
    return exit_status::unreadable_input;
}

}  // namespace tvmath
