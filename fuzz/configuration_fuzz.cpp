#include <stdlib.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "tvmath/configuration.h"

// Any bytes as a settings file: nothing crashes or hangs, a key that is set is read back, and with the key
// taken out again the text is what it was, but for the header of a section that was missing.

namespace fs = std::filesystem;

namespace {

fs::path make_folder() {
    std::string name =
        (fs::path(::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") / "tvmath_fuzz_XXXXXX").string();
    if (!::mkdtemp(name.data())) ::abort();
    ::setenv("TVMATH_EXECUTABLE_FOLDER", name.c_str(), 1);
    ::setenv("TVMATH_COMMON_DATA", name.c_str(), 1);  // for the log
    return name;
}

// Goes with the process.
struct folder {
    fs::path path = make_folder();
    ~folder() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
};

std::string read_bytes(fs::path const& name) {
    std::ifstream file(name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

void require(bool holds) {
    if (!holds) ::abort();
}

std::string wide_bytes(std::string const& ascii) {
    std::string bytes;
    for (char const c : ascii) bytes.append({c, '\0'});
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static folder const place;
    fs::path const name = place.path / "a.ini";
    std::string bytes(reinterpret_cast<char const*>(data), size);
    std::ofstream(name, std::ios::binary) << bytes;
    fs::remove(name.string() + ".backup");

    bytes.append(bytes.size() % 2, '\0');
    bool const damaged = size == 1 || (size != 0 && !bytes.starts_with("\xFF\xFE")) ||
                         (bytes.size() > 2 && bytes[2] == 0 && bytes[3] == 0);
    if (damaged) bytes.clear();
    bool found = false, had_key = false;
    {
        Configuration file(to_wide(name.string()), true);
        found = file.select_section(u"S", false);
        require(file.select_section(u"S", true));
        wide_string value;
        had_key = file.get_value(u"k", value);
        require(file.set_value(u"k", u"[S] = k") && file.get_value(u"k", value) && value == u"[S] = k"_w);
        require(file.remove_value(u"k"));
    }
    std::string const after = read_bytes(name);
    if (!found) {
        require(after == (bytes.empty() ? "\xFF\xFE" : bytes) + wide_bytes("\r\n[S]\r\n"));
    } else if (!had_key) {
        // Behind a header that ended the file stands a line end now; of an empty text not even the mark is
        // left.
        require(after == bytes || after == bytes + wide_bytes("\r\n"));
    }
    return 0;
}
