#pragma once

// Every public header of the library.
#include "tvmath/array.h"
#include "tvmath/ctl_ref.h"
#include "tvmath/export.h"
#include "tvmath/matrix.h"
#include "tvmath/point.h"
#include "tvmath/quick_fit.h"
#include "tvmath/real_rect.h"
#include "tvmath/ref.h"
#include "tvmath/scalar.h"
#include "tvmath/screen_hit.h"
#include "tvmath/storage.h"
#include "tvmath/transform.h"
#include "tvmath/vector.h"
#include "tvmath/version.h"
#include "tvmath/wide_string.h"
