#include "tvmath/real_rect.h"

#include <algorithm>
#include <cmath>
#include <utility>

inline namespace tvmath {

CRealRect::CRealRect(double left_side, double bottom_side, double right_side, double top_side)
    : left(left_side), top(top_side), right(right_side), bottom(bottom_side) {
    NormalizeRect();
}

void CRealRect::SetRect(double left_side, double bottom_side, double right_side, double top_side) {
    *this = CRealRect(left_side, bottom_side, right_side, top_side);
}

double CRealRect::Width() const {
    return std::fabs(right - left);
}

double CRealRect::Height() const {
    return std::fabs(top - bottom);
}

point CRealRect::CenterPoint() const {
    return point(true, (left + right) / 2, (bottom + top) / 2);
}

void CRealRect::NormalizeRect() {
    if (left > right) std::swap(left, right);
    if (bottom > top) std::swap(bottom, top);
}

void CRealRect::OffsetRect(double dx, double dy) {
    left += dx;
    right += dx;
    bottom += dy;
    top += dy;
}

CRealRect& CRealRect::operator+=(point const& p) {
    if (!p.is_trivial()) OffsetRect(p.x(), p.y());
    return *this;
}

CRealRect& CRealRect::operator-=(point const& p) {
    return *this += -p;
}

void CRealRect::ScaleRect(double s) {
    left *= s;
    top *= s;
    right *= s;
    bottom *= s;
}

void CRealRect::InflateRect(double at_left, double at_bottom, double at_right, double at_top) {
    left -= at_left;
    bottom -= at_bottom;
    right += at_right;
    top += at_top;
}

void CRealRect::InflateRect(point const& p) {
    if (!p.is_trivial()) InflateRect(p.x(), p.y());
}

void CRealRect::DeflateRect(point const& p) {
    InflateRect(-p);
}

bool CRealRect::PtInRect(point const& p) const {
    return !p.is_trivial() && left < p.x() && p.x() < right && bottom < p.y() && p.y() < top;
}

namespace {

bool finish(CRealRect& r) {
    if (r.left > r.right || r.bottom > r.top) r.SetRectEmpty();
    return !r.IsRectEmpty();
}

// Cuts [low, high] by what [from, to] covers of it, where that reaches over an end. When it reaches over both
// ends exactly, the interval comes out inverted, which empties the rectangle.
void cut_interval(double& low, double& high, double from, double to) {
    bool const over_high = low <= from && from <= high && to >= high;
    bool const over_low = low <= to && to <= high && from <= low;
    if (over_high) high = from;
    if (over_low) low = to;
}

}  // namespace

bool CRealRect::IntersectRect(CRealRect a, CRealRect b) {
    left = std::max(a.left, b.left);
    bottom = std::max(a.bottom, b.bottom);
    right = std::min(a.right, b.right);
    top = std::min(a.top, b.top);
    return finish(*this);
}

bool CRealRect::UnionRect(CRealRect a, CRealRect b) {
    *this = a.IsRectNull() ? b : a;
    if (!b.IsRectNull()) {
        left = std::min(left, b.left);
        bottom = std::min(bottom, b.bottom);
        right = std::max(right, b.right);
        top = std::max(top, b.top);
    }
    return finish(*this);
}

bool CRealRect::SubtractRect(CRealRect a, CRealRect b) {
    *this = a;
    if (a.IsRectNull() || b.IsRectNull()) return false;
    if (b.left <= left && b.right >= right) cut_interval(bottom, top, b.bottom, b.top);
    if (b.bottom <= bottom && b.top >= top) cut_interval(left, right, b.left, b.right);
    return finish(*this);
}

CRealRect& CRealRect::operator&=(CRealRect const& r) {
    IntersectRect(*this, r);
    return *this;
}

CRealRect& CRealRect::operator|=(CRealRect const& r) {
    UnionRect(*this, r);
    return *this;
}

}  // namespace tvmath
