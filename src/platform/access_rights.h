#pragma once

#include <string>

#include "platform/file_access.h"

inline namespace tvmath {

/// Who may do what with a file: the mode and, where the file system has one, the access list.
struct access_rights {
    unsigned int mode = 0;
    std::string access_list;
};

/// 0 or the system's number of the failure.
int read_access_rights(file_path const& file, access_rights& rights);

/// 0 or the system's number of the failure. A folder that is given the rights of a file may be searched by
/// those who may read.
int set_access_rights(file_path const& file, access_rights const& rights);

}  // namespace tvmath
