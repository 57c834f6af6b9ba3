#include "file_output.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <ostream>

#include "point_file.h"

inline namespace tvmath {

exit_status write_file(std::string const& name, std::string const& bytes, std::ostream& err) {
    errno = 0;
    std::ofstream file(name, std::ios::binary);
    file << bytes;
    file.close();
    if (file) return exit_status::done;
    err << shown_name(name) << ": cannot be written: " << std::strerror(errno) << '\n';
    return exit_status::internal;
}

}  // namespace tvmath
