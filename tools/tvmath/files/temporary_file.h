#pragma once

#include <filesystem>
#include <string>

inline namespace tvmath {

/// A place for one file in a folder of its own, which nobody else can read. Both go with this object.
class temporary_file {
public:
    temporary_file();
    ~temporary_file();
    temporary_file(temporary_file const&) = delete;
    temporary_file& operator=(temporary_file const&) = delete;

    /// Empty when there is no place for temporary files.
    std::filesystem::path const& path() const { return path_; }

    /// Writes the file. False when it cannot be stored.
    bool write(std::string const& bytes) const;
    /// The bytes of the file; false when it cannot be read.
    bool read(std::string& bytes) const;

private:
    std::filesystem::path path_;
};

}  // namespace tvmath
