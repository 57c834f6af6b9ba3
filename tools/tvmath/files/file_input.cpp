#include "file_input.h"

#include <fstream>
#include <iostream>

#include "point_file.h"

inline namespace tvmath {

bool read_all(std::string const& name, std::size_t largest, char const* too_large, std::string& bytes,
              std::string& reason) {
    std::ifstream file;
    read_error error;
    if (name != "-" && !open_input(name, file, error)) {
        reason = error.reason;
        return false;
    }
    std::istream& in = name == "-" ? std::cin : file;
    std::string all, block(std::size_t{1} << 20, '\0');
    while (in.read(block.data(), static_cast<std::streamsize>(block.size())), in.gcount() > 0) {
        all.append(block, 0, static_cast<std::size_t>(in.gcount()));
        if (all.size() > largest) {
            reason = too_large;
            return false;
        }
    }
    if (in.bad()) reason = "cannot be read";
    if (all.empty()) reason = "is empty";
    if (!reason.empty()) return false;
    bytes.swap(all);
    return true;
}

}  // namespace tvmath
