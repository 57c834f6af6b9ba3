#include "offset_oval.h"

#include <cmath>
#include <limits>

#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

xy unit(xy const& a) {
    return (1 / length(a)) * a;
}

}  // namespace

offset_oval::offset_oval(ellipse const& e, xyz const& origin, double offset)
    : center_(xyz(e.basis(0)) - origin), offset_(offset) {
    point u = e.basis(1), v = e.basis(2);
    orthogonalize_ellipse_2d(u, v);
    if (v.length2d() > u.length2d()) std::swap(u, v);
    a_ = u.length2d();
    b_ = v.length2d();
    e1_ = xy(u.x() / a_, u.y() / a_);
    e2_ = xy(-e1_.y, e1_.x);
}

bool offset_oval::is_circle() const {
    return a_ - b_ <= 4 * std::numeric_limits<double>::epsilon() * a_;
}

bool offset_oval::is_same(offset_oval const& other, double noise) const {
    // The turn of the axes moves the ellipse by no more than that angle times a - b.
    double const turned = (a_ - b_) * cross(e1_, other.e1_);
    return size(center_ - other.center_) <= noise && std::fabs(a_ - other.a_) <= noise &&
           std::fabs(b_ - other.b_) <= noise && std::fabs(turned) <= noise;
}

// With g = |(b cos t, a sin t)|, which is also the speed of the ellipse, its curvature is a b / g³.
offset_oval::place offset_oval::on(xy const& k) const {
    double const nx = b_ * k.x, ny = a_ * k.y, g = length(xy(nx, ny)), turn = (a_ / g) * (b_ / g);
    xy const normal = (nx / g) * e1_ + (ny / g) * e2_;
    xy const at = center_ + (a_ * k.x) * e1_ + (b_ * k.y) * e2_ + offset_ * normal;
    return {k, at, normal, g + offset_ * turn, turn};
}

offset_oval::place offset_oval::beyond(place const& from, double angle) const {
    return on(unit(std::cos(angle) * from.k + std::sin(angle) * xy(-from.k.y, from.k.x)));
}

offset_oval::place offset_oval::between(place const& p, place const& q) const {
    if (dot(p.k, q.k) <= dot(p.normal, q.normal)) return on(unit(p.k + q.k));
    xy const n = p.normal + q.normal;
    return on(unit(xy(a_ * dot(n, e1_), b_ * dot(n, e2_))));
}

// Of a curve inside, g³ = a b r at the cusps, thus (a sin t)² + (b cos t)² = (a b r)^(2/3).
std::vector<offset_oval::place> offset_oval::arcs() const {
    double const root = offset_ < 0 ? std::cbrt(-offset_) * std::cbrt(a_) * std::cbrt(b_) : 0;
    double const c2 = (a_ - root) * (a_ + root), s2 = (root - b_) * (root + b_), all = (a_ - b_) * (a_ + b_);
    std::vector<place> ends;
    for (xy k : {xy(1, 0), xy(0, 1), xy(-1, 0), xy(0, -1)}) {
        ends.push_back(on(k));
        if (!(c2 > 0 && s2 > 0 && all > 0)) continue;
        double const c = std::sqrt(c2 / all), s = std::sqrt(s2 / all);
        // From an end of the first axis sin t grows, from one of the second cos t.
        xy const next(-k.y, k.x);
        ends.push_back(on(unit(k.y == 0 ? c * k + s * next : s * k + c * next)));
    }
    ends.push_back(ends.front());
    return ends;
}

std::size_t convex_arcs::count() {
    if (count_ == 0) {
        std::vector<place> const ends = oval_.arcs();
        arcs_.reserve(64);
        for (std::size_t i = 1; i < ends.size(); ++i) add(ends[i - 1], ends[i]);
        count_ = arcs_.size();
    }
    return count_;
}

// The height of a triangle whose angles at the base add up to `turn` is at most half of the base times
// tan(turn / 2).
void convex_arcs::add(place const& from, place const& to) {
    double const sine = std::fabs(cross(from.normal, to.normal)), cosine = dot(from.normal, to.normal);
    double const chord = length(to.at - from.at);
    arcs_.push_back({from, to, sine, chord, chord / 2 * sine / (1 + cosine)});
}

std::size_t convex_arcs::halves(std::size_t i) {
    if (arcs_[i].halves == 0) {
        place const from = arcs_[i].from, center = middle(i), to = arcs_[i].to;
        arcs_[i].halves = arcs_.size();
        add(from, center);
        add(center, to);
    }
    return arcs_[i].halves;
}

}  // namespace tvmath
