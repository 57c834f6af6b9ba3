#include "tvmath/real_rect.h"

#include <gtest/gtest.h>

#include "support/shape_points.h"

inline namespace tvmath {
namespace {

// Sides in the order left, bottom, right, top.
void expect_sides(CRealRect const& r, double left, double bottom, double right, double top) {
    EXPECT_EQ(r.left, left);
    EXPECT_EQ(r.bottom, bottom);
    EXPECT_EQ(r.right, right);
    EXPECT_EQ(r.top, top);
}

TEST(RealRect, NormalizesItsSides) {
    expect_sides(CRealRect(3, 4, 1, 2), 1, 2, 3, 4);
    CRealRect r;
    r.SetRect(1, 8, 4, 2);
    EXPECT_EQ(r.Width(), 3);
    EXPECT_EQ(r.Height(), 6);
    EXPECT_TRUE(r.Size() == point(false, 3, 6));
    EXPECT_TRUE(r.CenterPoint() == at(2.5, 5));
    EXPECT_TRUE(r.TopLeft() == at(1, 8) && r.BottomRight() == at(4, 2));
    EXPECT_TRUE(r.TopRight() == at(4, 8) && r.BottomLeft() == at(1, 2));
}

TEST(RealRect, IsEmptyOnlyWithoutWidthAndHeight) {
    EXPECT_TRUE(CRealRect(1, 1, 1, 1).IsRectEmpty());
    EXPECT_FALSE(CRealRect(1, 1, 1, 2).IsRectEmpty());
    EXPECT_FALSE(CRealRect(1, 1, 1, 1).IsRectNull());
    EXPECT_TRUE(CRealRect().IsRectNull());
}

TEST(RealRect, HoldsPointsStrictlyInside) {
    CRealRect const r(0, 0, 4, 2);
    EXPECT_TRUE(r.PtInRect(at(1, 1)));
    for (point const& out : {at(0, 0), at(0, 1), at(4, 1), at(1, 0), at(1, 2), at(5, 1), point()}) {
        EXPECT_FALSE(r.PtInRect(out)) << out.x() << ", " << out.y();
    }
}

TEST(RealRect, MovesAndGrows) {
    CRealRect r(0, 0, 4, 2);
    r += at(1, 2);
    r -= point();
    expect_sides(r, 1, 2, 5, 4);
    expect_sides(r - at(1, 2), 0, 0, 4, 2);
    r.InflateRect(1, 2, 3, 4);
    expect_sides(r, 0, 0, 8, 8);
    r.DeflateRect(1, 2, 3, 4);
    expect_sides(r, 1, 2, 5, 4);
    r.InflateRect(at(1, 2));
    r.DeflateRect(point());
    expect_sides(r, 0, 0, 6, 6);
    r.DeflateRect(1, 2);
    r.ScaleRect(2);
    expect_sides(r, 2, 4, 10, 8);
}

TEST(RealRect, IntersectsAndUnites) {
    CRealRect const a(0, 0, 4, 4), b(2, 1, 6, 3);
    expect_sides(a & b, 2, 1, 4, 3);
    expect_sides(a | b, 0, 0, 6, 4);
    CRealRect r = b;
    EXPECT_FALSE(r.IntersectRect(a, CRealRect(5, 5, 6, 6)));
    EXPECT_TRUE(r.IsRectNull());
    r = b;
    EXPECT_TRUE(r.IntersectRect(a, r));  // the operand may be the rectangle itself
    expect_sides(r, 2, 1, 4, 3);
    EXPECT_TRUE(r.UnionRect(CRealRect(), b) && r == b);
    EXPECT_TRUE(r.UnionRect(b, CRealRect()) && r == b);
    EXPECT_FALSE(r.UnionRect(CRealRect(), CRealRect()));
    EXPECT_TRUE(r.IntersectRect(a, CRealRect(4, 0, 6, 4)));  // a common side has a height
}

TEST(RealRect, SubtractsWhatLeavesARectangle) {
    CRealRect const a(0, 0, 4, 4);
    struct {
        char const* name;
        CRealRect b, expected;
        bool result;
    } const cases[] = {
        {"upper part", {-1, 3, 5, 9}, {0, 0, 4, 3}, true},
        {"lower part", {0, -1, 4, 1}, {0, 1, 4, 4}, true},
        {"left part", {-1, -1, 1, 5}, {1, 0, 4, 4}, true},
        {"right part", {3, 0, 5, 4}, {0, 0, 3, 4}, true},
        {"a band across the middle leaves two pieces", {-1, 1, 5, 2}, a, true},
        {"a corner leaves an angle", {3, 3, 5, 5}, a, true},
        {"a hole", {1, 1, 2, 2}, a, true},
        {"covered strictly on all sides", {-1, -1, 5, 5}, a, true},
        {"itself", a, {}, false},
        {"nothing", {}, a, false},
        {"apart", {6, 0, 9, 4}, a, true},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        CRealRect r;
        EXPECT_EQ(r.SubtractRect(a, c.b), c.result);
        EXPECT_TRUE(r == c.expected);
    }
    CRealRect r = a;
    EXPECT_FALSE(r.SubtractRect(CRealRect(), a));
    EXPECT_TRUE(r.IsRectNull());
}

}  // namespace
}  // namespace tvmath
