#pragma once

#include "tvmath/export.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {

// Where the settings are. Every folder ends in the platform's separator; a setting that names a folder may
// use either slash. The empty text stands for a folder that cannot be had.

/// Folder of the running executable; the environment variable TVMATH_EXECUTABLE_FOLDER puts another in its
/// place.
TVMATH_API wide_string get_executable_folder();

/// "Kelvane Corporation/Torvex for Windows" in the system's folder for the data of all users, which is
/// /var/lib or what the environment variable TVMATH_COMMON_DATA names. With `create`, missing levels are
/// made, the last one open to all users; empty if that fails.
TVMATH_API wide_string get_common_data_folder(bool create);

/// "ConfigFolder" of section "Setup" in "Folders.ini", if that is a folder; otherwise the common data folder,
/// which is made. The setting is read once per process.
TVMATH_API wide_string get_config_folder();

/// "SubDirectory" of section "Machine" in "Hardware.ini"; empty if there is none.
TVMATH_API wide_string get_machine_subdirectory();

/// The machine subfolder of the configuration folder; without one, the configuration folder itself.
TVMATH_API wide_string get_machine_folder();

/// Moves the settings of an old installation from the folder of the executable to the common data folder and
/// the machine folder, with the access rights of new files there. A redirected configuration folder
/// leaves everything where it is.
///
/// True when nothing is left to do, which is remembered for the process. False after a failure: files that
/// were moved stay, and the next call goes on with the rest.
TVMATH_API bool ensure_settings_moved();

}  // namespace tvmath
