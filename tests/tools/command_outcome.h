#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <string>

inline namespace tvmath {

/// What a command has returned and written.
struct outcome {
    int status;
    std::string out, err;
};

/// The name of a file with that text, of the running test alone: tests run side by side.
inline std::string file_of(std::string const& text) {
    testing::TestInfo const& test = *testing::UnitTest::GetInstance()->current_test_info();
    std::string const name = testing::TempDir() + test.test_suite_name() + '_' + test.name();
    std::ofstream(name, std::ios::binary) << text;
    return name;
}

}  // namespace tvmath
