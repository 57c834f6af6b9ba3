#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tvmath/wide_string.h"

inline namespace tvmath {

namespace fs = std::filesystem;

/// A folder for the files of a test, gone with it.
class test_folder {
public:
    test_folder() {
        std::string name = (fs::temp_directory_path() / "tvmath_xml_XXXXXX").string();
        if (::mkdtemp(name.data())) path_ = name;
    }
    test_folder(test_folder const&) = delete;
    test_folder& operator=(test_folder const&) = delete;
    ~test_folder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }

    fs::path file(char const* name = "a.xml") const { return path_ / name; }
    wide_string name(char const* of = "a.xml") const { return to_wide(file(of).string()); }
    void write(std::string const& bytes) const { std::ofstream(file(), std::ios::binary) << bytes; }
    std::string bytes() const {
        std::ifstream in(file(), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    std::size_t file_count() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(path_), fs::directory_iterator()));
    }

private:
    fs::path path_;
};

}  // namespace tvmath
