#pragma once

inline namespace tvmath {

/// The system's number of the calling thread.
unsigned int current_thread_id();

}  // namespace tvmath
