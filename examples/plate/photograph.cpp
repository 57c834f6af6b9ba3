#include "scenes.h"
namespace plate {
picture plate_in_a_photograph() {
    return plate_on_backlight(0.02);
}
}  // namespace plate
