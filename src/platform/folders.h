#pragma once

#include "platform/file_access.h"

inline namespace tvmath {

inline constexpr char folder_separator = static_cast<char>(file_path::preferred_separator);

/// Folder of the running executable, overridden by TVMATH_EXECUTABLE_FOLDER; empty if the system does not
/// tell.
file_path executable_folder();

/// The system's folder for the data of all users, overridden by TVMATH_COMMON_DATA.
file_path common_data_base();

/// Makes a folder that every user may read and write, and the levels above it with the usual rights. An
/// existing folder stays as it is. False when there is none afterwards.
bool create_folder_for_all(file_path const& folder);

/// Moves a file or a folder, to another volume too. An existing `to` is not overwritten. False with `from`
/// still there.
bool move_file(file_path const& from, file_path const& to);

}  // namespace tvmath
