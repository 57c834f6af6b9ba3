#include <cstddef>
#include <map>
#include <vector>

#include "geometry/extent.h"
#include "path_spans.h"
#include "span_pair.h"
#include "tvmath/intersection.h"

inline namespace tvmath {
namespace {

// Rectangles of the control points of a path's spans in a binary tree, so that a span finds those of another
// path that it may meet, in order, without looking at all of them.
class span_tree {
public:
    explicit span_tree(curve const& c) : count_(c.capacity() / 3) {
        while (leaves_ < count_) leaves_ *= 2;
        nodes_.resize(2 * leaves_);
        point const* const first = c.begin();
        for (std::size_t i = 0; i < count_; ++i) nodes_[leaves_ + i] = rectangle_of(first + 3 * i);
        for (std::size_t n = leaves_; n-- > 1;) nodes_[n] = joined(nodes_[2 * n], nodes_[2 * n + 1]);
    }

    struct rectangle {
        interval x, y;
    };
    static rectangle rectangle_of(point const* control) {
        rectangle r;
        for (point const* p = control; p < control + 4; ++p) {
            r.x.widen(p->x());
            r.y.widen(p->y());
        }
        return r;
    }

    std::size_t count() const { return count_; }
    rectangle const& of_span(std::size_t i) const { return nodes_[leaves_ + i]; }

    template <class visitor>
    void visit_overlaps(rectangle const& r, visitor const& visit, std::size_t node = 1) const {
        rectangle const& mine = nodes_[node];
        if (!(mine.x.low <= r.x.high && r.x.low <= mine.x.high && mine.y.low <= r.y.high &&
              r.y.low <= mine.y.high)) {
            return;
        }
        if (node >= leaves_) return visit(node - leaves_);
        visit_overlaps(r, visit, 2 * node);
        visit_overlaps(r, visit, 2 * node + 1);
    }

private:
    static rectangle joined(rectangle a, rectangle const& b) {
        a.x.widen(b.x.low);
        a.x.widen(b.x.high);
        a.y.widen(b.y.low);
        a.y.widen(b.y.high);
        return a;
    }

    std::size_t count_, leaves_ = 1;
    std::vector<rectangle> nodes_;
};

// Hits nearer than this are one: the end of a span and the start of the next one report the same place.
constexpr double same_place = 1e-7;

// The hits so far, by their x, so that a long list is not searched for each.
class distinct_hits {
public:
    void add(point const& hit) {
        for (auto near = by_x_.lower_bound(hit.x() - same_place);
             near != by_x_.end() && near->first <= hit.x() + same_place; ++near) {
            if (distance3d(found_[near->second], hit) < same_place) return;
        }
        by_x_.emplace(hit.x(), found_.size());
        found_.push_back(hit);
    }
    idioms::array<point> list() const {
        return idioms::array<point>(static_cast<unsigned int>(found_.size()), found_.data());
    }

private:
    std::multimap<double, std::size_t> by_x_;
    std::vector<point> found_;
};

}  // namespace

idioms::array<point> point_intersect(curve a, curve b) {
    if (!has_spans(a) || !has_spans(b) || !a[0].is_3d() || !b[0].is_3d()) return {};
    span_tree const tree_a(a), tree_b(b);
    point const* const first = a.begin();
    point const* const second = b.begin();
    span_pair pair;
    std::vector<point> hits;
    distinct_hits found;
    for (std::size_t i = 0; i < tree_a.count(); ++i) {
        tree_b.visit_overlaps(tree_a.of_span(i), [&](std::size_t j) {
            hits.clear();
            pair.meet(first + 3 * i, second + 3 * j, hits);
            for (point const& hit : hits) found.add(hit);
        });
    }
    return found.list();
}

}  // namespace tvmath
