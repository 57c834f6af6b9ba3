#include "temporary_file.h"

#include <fstream>
#include <iterator>
#include <random>

inline namespace tvmath {

temporary_file::temporary_file() {
    namespace fs = std::filesystem;
    std::error_code error;
    fs::path const place = fs::temp_directory_path(error);
    if (error) return;
    std::random_device random;
    // Making a folder fails when the name is taken, so that nobody can put a link of his own in its place.
    for (int attempt = 0; attempt < 16; ++attempt) {
        fs::path const folder =
            place / ("tvmath_" + std::to_string(random()) + '_' + std::to_string(random()));
        if (!fs::create_directory(folder, error)) continue;
        fs::permissions(folder, fs::perms::owner_all, error);
        path_ = folder / "file";
        return;
    }
}

temporary_file::~temporary_file() {
    if (path_.empty()) return;
    std::error_code ignored;
    std::filesystem::remove_all(path_.parent_path(), ignored);
}

bool temporary_file::write(std::string const& bytes) const {
    std::ofstream file(path_, std::ios::binary);
    file << bytes;
    file.close();
    return !path_.empty() && file.good();
}

bool temporary_file::read(std::string& bytes) const {
    std::ifstream file(path_, std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(file), {});
    return !bytes.empty();
}

}  // namespace tvmath
