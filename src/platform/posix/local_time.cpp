#include "platform/local_time.h"

#include <time.h>

inline namespace tvmath {

bool get_local_time(local_time& now) {
    time_t const seconds = ::time(nullptr);
    tm parts{};
    if (!::localtime_r(&seconds, &parts)) return false;
    now = {parts.tm_year + 1900,
           parts.tm_mon + 1,
           parts.tm_mday,
           parts.tm_hour,
           parts.tm_min,
           parts.tm_sec,
           static_cast<int>(parts.tm_gmtoff / 60)};
    return true;
}

}  // namespace tvmath
