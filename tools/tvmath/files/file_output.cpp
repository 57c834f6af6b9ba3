#include "file_output.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <ostream>

#include "point_file.h"

inline namespace tvmath {

namespace {

namespace fs = std::filesystem;

bool write_bytes(fs::path const& name, std::string const& bytes) {
    errno = 0;
    std::ofstream file(name, std::ios::binary);
    file << bytes;
    file.close();
    return file.good();
}

// Writes the bytes beside the file and gives them its place.
bool replace_bytes(fs::path const& target, std::string const& bytes) {
    std::error_code error;
    fs::path fresh = target;
    fresh += ".writing";
    fs::file_status const old = fs::status(target, error);
    // A file that may not be written is not replaced either.
    errno = 0;
    bool done = !fs::exists(old) || std::ofstream(target, std::ios::binary | std::ios::app).good();
    done = done && write_bytes(fresh, bytes);
    int const cause = errno;
    if (done && fs::exists(old)) fs::permissions(fresh, old.permissions(), error);
    if (done) {
        fs::rename(fresh, target, error);
        if (!error) return true;
    }
    std::error_code ignored;
    fs::remove(fresh, ignored);
    errno = done ? error.value() : cause;
    return false;
}

}  // namespace

exit_status write_file(std::string const& name, std::string const& bytes, std::ostream& err) {
    std::error_code error;
    fs::file_status const old = fs::status(name, error);
    bool const is_file = !fs::exists(old) || fs::is_regular_file(old);
    // Where a link leads to, so that the link stays.
    fs::path const target =
        fs::is_symlink(fs::symlink_status(name, error)) ? fs::weakly_canonical(name, error) : fs::path(name);
    bool const done = is_file ? replace_bytes(target, bytes) : write_bytes(name, bytes);
    if (done) return exit_status::done;
    err << shown_name(name) << ": cannot be written: " << std::strerror(errno) << '\n';
    return exit_status::internal;
}

}  // namespace tvmath
