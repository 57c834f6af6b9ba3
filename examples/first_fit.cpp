#include <tvmath/tvmath.h>
#include <cstdio>
#include <vector>

// Six points touched in a hole; the circle of least squares of their distances.
int main() {
    std::vector<point> const touched = {{true, 1, 7}, {true, 2, 6}, {true, 5, 8},
                                        {true, 7, 7}, {true, 9, 5}, {true, 3, 7}};
    circle const hole = circle_fit(touched);
    if (hole.is_trivial()) return 1;  // too few points, or all in a line
    point const center = hole.basis(0);
    std::printf("hole at (%.4f, %.4f), diameter %.4f\n", center.x(), center.y(), 2 * hole.radius());
}
