#pragma once

#include <chrono>
#include <cstddef>
#include <iosfwd>
#include <string>

inline namespace tvmath {

/// One line on a terminal that tells how far a long job is; it is gone when the job is done. Nothing is
/// written where the stream is no terminal, nor in the first half second.
class progress_line {
public:
    progress_line(std::ostream& err, std::size_t total);
    ~progress_line();
    progress_line(progress_line const&) = delete;
    progress_line& operator=(progress_line const&) = delete;

    /// `done` items are done, and `name` is the next one.
    void show(std::size_t done, std::string const& name);

private:
    using clock = std::chrono::steady_clock;
    std::ostream& err_;
    std::size_t total_;
    bool is_terminal_, is_shown_ = false;
    clock::time_point next_;
};

}  // namespace tvmath
