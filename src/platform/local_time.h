#pragma once

inline namespace tvmath {

/// A moment by the clock on the wall.
struct local_time {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    int utc_offset = 0;  ///< Minutes that the wall clock is ahead of UTC, daylight saving included.
};

/// Now. False when the system cannot convert it.
bool get_local_time(local_time& now);

}  // namespace tvmath
