#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

inline namespace tvmath {

/// A folder for the files of one test, empty at first.
class record_folder {
public:
    record_folder() : place_(std::filesystem::path(testing::TempDir()) / ("tvmath_" + test_name())) {
        std::filesystem::remove_all(place_);
        std::filesystem::create_directory(place_);
    }
    ~record_folder() { std::filesystem::remove_all(place_); }

    std::string path(std::string const& name) const { return (place_ / name).string(); }
    std::string write(std::string const& name, std::string const& bytes) const {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }
    std::string read(std::string const& name) const {
        std::ifstream in(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    std::ptrdiff_t files() const {
        return std::distance(std::filesystem::directory_iterator(place_),
                             std::filesystem::directory_iterator());
    }

private:
    // Tests run side by side, each in a process of its own.
    static std::string test_name() {
        testing::TestInfo const& test = *testing::UnitTest::GetInstance()->current_test_info();
        return std::string(test.test_suite_name()) + '_' + test.name();
    }

    std::filesystem::path place_;
};

inline void expect_one_line(std::string const& message) {
    EXPECT_GT(message.size(), 1u);
    EXPECT_EQ(message.find('\n'), message.size() - 1) << message;
}

}  // namespace tvmath
