#pragma once

#include "platform/file_access.h"

inline namespace tvmath {

/// Puts `fresh` in the place of `target`, with the access rights of `target`; all names in one folder. The
/// old target stays under the name `kept`, or goes when that is empty. `fresh` has been flushed to disk.
///
/// Whenever the process dies or the power fails, a complete `target` is there, the old one or the new one,
/// and so is a complete `kept` if there was one. False, with `target` as it was, when the system refuses.
bool replace_file(file_path const& fresh, file_path const& target, file_path const& kept);

}  // namespace tvmath
