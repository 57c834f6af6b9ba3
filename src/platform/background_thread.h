#pragma once

#include <functional>
#include <thread>

inline namespace tvmath {

/// Starts a thread that takes none of the process's signals, so that the program's handlers run on the
/// program's own threads. Returns a thread that is not joinable when the system refuses another one.
std::thread start_background_thread(std::function<void()> work);

/// Number of the running process. A forked child, which has no thread but the one that forked, tells by it
/// that a thread on record is not its own.
long current_process();

}  // namespace tvmath
