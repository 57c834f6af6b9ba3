#include "polyline_finder_build.h"

#include <algorithm>

#include "polyline_finder_records.h"

inline namespace tvmath {
namespace {

template <unsigned int dimension>
using segments_of = std::vector<finder_segment<dimension>>;

template <unsigned int dimension>
segments_of<dimension> make_segments(std::vector<point> const& points) {
    segments_of<dimension> segments;
    segments.reserve(points.size());
    finder_segment<dimension> s = {coordinates_of<dimension>(points.front()), {}, {}};
    for (std::size_t k = 1; k < points.size(); ++k) {
        auto const next = coordinates_of<dimension>(points[k]);
        // The difference is taken before it is narrowed: far from the origin it would keep no digit after.
        for (unsigned int i = 0; i < dimension; ++i) s.d[i] = static_cast<float>(next[i] - s.start[i]);
        float const l = squared(s.d);
        if (l < 1e-32f) continue;
        for (unsigned int i = 0; i < dimension; ++i) s.u[i] = s.d[i] / l;
        segments.push_back(s);
        s.start = next;
    }
    // All points coincide: the first one answers, as a segment without length.
    if (segments.empty()) segments.push_back({s.start, {}, {}});
    return segments;
}

// Makes the boxes behind the segments of a block, bottom up.
template <unsigned int dimension>
class box_builder {
    using box = finder_box<dimension>;

public:
    // What is sorted in place of a segment: twice its midpoint, and where it stands.
    struct item {
        coordinates<dimension> key;
        std::uint32_t offset;
    };
    struct subtree {
        box bounds;
        std::uint32_t offset;
    };

    box_builder(unsigned char* block, std::uint32_t first_node) : block_(block), next_(first_node) {}

    // The halves of a sorted range are sorted again, along the next axis; so it is enough to know which half
    // an item falls into. Depth is log2 of the count.
    subtree build(item* from, item* to, unsigned int axis) {
        if (to - from == 1) {
            return {box(load<finder_segment<dimension>>(block_ + from->offset)), from->offset};
        }
        item* const middle = from + (to - from) / 2;
        // Equal keys in order along the polyline, so that the tree is the same with every standard library.
        std::nth_element(from, middle, to, [axis](item const& a, item const& b) {
            return a.key[axis] != b.key[axis] ? a.key[axis] < b.key[axis] : a.offset < b.offset;
        });
        unsigned int const next_axis = axis + 1 == dimension ? 0 : axis + 1;
        subtree const first = build(from, middle, next_axis), second = build(middle, to, next_axis);
        box both = first.bounds;
        both.include(second.bounds);
        both.first = first.offset;
        both.second = second.offset;
        store(block_ + next_, both);
        next_ += static_cast<std::uint32_t>(sizeof both);
        return {both, next_ - static_cast<std::uint32_t>(sizeof both)};
    }

private:
    unsigned char* block_;
    std::uint32_t next_;
};

template <unsigned int dimension>
auto sort_items(segments_of<dimension> const& segments) {
    std::vector<typename box_builder<dimension>::item> items(segments.size());
    for (std::size_t k = 0; k < segments.size(); ++k) {
        auto const& s = segments[k];
        for (unsigned int i = 0; i < dimension; ++i) {
            double const key = s.start[i] + s.start[i] + static_cast<double>(s.d[i]);
            // A NaN has no place in an order.
            items[k].key[i] = key == key ? key : std::numeric_limits<double>::infinity();
        }
        items[k].offset = static_cast<std::uint32_t>(k * sizeof s);
    }
    return items;
}

}  // namespace

template <unsigned int dimension>
std::uint32_t build_polyline_tree(std::vector<point> const& points, std::vector<unsigned char>& block) {
    if (points.empty()) return 0;
    auto const segments = make_segments<dimension>(points);
    std::size_t const segment_bytes = segments.size() * sizeof segments[0];
    std::size_t const bytes = segment_bytes + (segments.size() - 1) * sizeof(finder_box<dimension>);
    if (!fits_offsets(bytes)) return 0;

    auto items = sort_items<dimension>(segments);
    block.reserve(points.size() * (sizeof segments[0] + sizeof(finder_box<dimension>)));
    block.resize(bytes);
    std::memcpy(block.data(), segments.data(), segment_bytes);
    auto const first_node = static_cast<std::uint32_t>(segment_bytes);
    if (items.size() > 1) {
        box_builder<dimension>(block.data(), first_node).build(items.data(), items.data() + items.size(), 0);
    }
    return first_node;
}

template std::uint32_t build_polyline_tree<2>(std::vector<point> const&, std::vector<unsigned char>&);
template std::uint32_t build_polyline_tree<3>(std::vector<point> const&, std::vector<unsigned char>&);

}  // namespace tvmath
