#include "tvmath/version.h"

inline namespace tvmath {

char const* version() {
    return TVMATH_VERSION_STRING;
}

}  // namespace tvmath
