#pragma once

#include <string>
#include <vector>

inline namespace tvmath {

/// The files of an old installation that go to the common data folder, in the order of their move.
std::vector<std::string> common_files_of_old_installation();

/// Those that go to the machine folder.
std::vector<std::string> machine_files_of_old_installation();

}  // namespace tvmath
