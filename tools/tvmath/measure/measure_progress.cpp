#include "measure/measure_progress.h"

#include <unistd.h>

#include <iostream>

inline namespace tvmath {
namespace {

constexpr std::size_t longest_name = 40;

}  // namespace

progress_line::progress_line(std::ostream& err, std::size_t total)
    : err_(err),
      total_(total),
      is_terminal_(&err == &std::cerr && isatty(STDERR_FILENO)),
      next_(clock::now() + std::chrono::milliseconds(500)) {}

progress_line::~progress_line() {
    if (is_shown_) err_ << "\r\x1b[K" << std::flush;
}

void progress_line::show(std::size_t done, std::string const& name) {
    if (!is_terminal_ || clock::now() < next_) return;
    next_ = clock::now() + std::chrono::milliseconds(100);
    is_shown_ = true;
    err_ << "\r\x1b[K" << 100 * done / total_ << " %  " << done << " of " << total_ << "  "
         << name.substr(0, longest_name) << std::flush;
}

}  // namespace tvmath
