#include <tvmath/tvmath.h>

#include <cstring>
#include <string>

// Uses a header-only class, an exported class and an exported function; exits 0 when all give what they
// should.
int main() {
    idioms::array<point> points(3, point(true, 1, 2));
    points(1) = point(true, 3, 2);
    points(2) = point(true, 2, 5);
    bool const centroid = point_fit(points) == point(true, 2, 3);
    bool const version_agrees = std::strcmp(version(), TVMATH_VERSION_STRING) == 0;
    bool raised = false;
    try {
        ctl::ref<point>().element();
    } catch (pointer_exception const& e) {  // caught across the library's border
        raised = std::string(e.what()) == "pointer";
    }
    return centroid && version_agrees && raised ? 0 : 1;
}
