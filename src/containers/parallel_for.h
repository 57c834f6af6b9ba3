#pragma once

#include <cstddef>
#include <functional>

#include "tvmath/export.h"

inline namespace tvmath {

/// Calls `work(first, last)` once for every piece of the range from 0 to `count`, each of `grain` elements
/// (at least 1), the last one shorter. Pieces run at the same time on several threads, this one among them,
/// and the call returns when all have ended. A thread is worth two pieces at least, so a range of up to three
/// runs on this thread alone.
///
/// Where the pieces begin does not depend on the number of threads, so neither does a result in which each
/// element has its own place. When pieces throw, no further ones are begun and the exception of the first of
/// them in the range is raised here, the one that a plain loop would have raised.
TVMATH_API void parallel_for(std::size_t count, std::size_t grain,
                             std::function<void(std::size_t, std::size_t)> const& work);

/// Most threads that a range is spread over from now on, in all of the process; 0, as at the start, stands
/// for as many as there are processors.
TVMATH_API void set_parallel_threads(unsigned int most);

}  // namespace tvmath
