#include "tvmath/polyline_finder.h"

#include <algorithm>

#include "local_buffer.h"
#include "polyline_finder_build.h"
#include "polyline_finder_records.h"

inline namespace tvmath {
namespace {

// The nearest place found so far, and the boxes that may hold a nearer one.
template <unsigned int dimension>
class polyline_search {
public:
    polyline_search(std::vector<unsigned char> const& block, std::uint32_t first_node,
                    coordinates<dimension> const& query)
        : block_(block.data()), first_node_(first_node), query_(query) {}

    void try_segment(std::uint32_t offset) {
        auto const s = load<finder_segment<dimension>>(block_ + offset);
        float t = 0;
        for (unsigned int i = 0; i < dimension; ++i) {
            t += static_cast<float>(query_[i] - s.start[i]) * s.u[i];
        }
        coordinates<dimension> const p = place(s, t);
        float const distance = squared_to([&](unsigned int i) { return query_[i] - p[i]; });
        if (!(distance < best_)) return;
        best_ = distance;
        best_segment_ = offset;
        place_ = p;
        is_found_ = true;
    }

    void run(std::uint32_t root) {
        handle(root);
        while (!waiting_.empty()) {
            std::pop_heap(waiting_.begin(), waiting_.end());
            entry const nearest = waiting_.pop_back();
            if (best_ < nearest.distance) return;
            auto const box = load<finder_box<dimension>>(block_ + nearest.offset);
            handle(box.first);
            handle(box.second);
        }
    }

    bool is_found() const { return is_found_; }
    std::uint32_t best_segment() const { return best_segment_; }
    coordinates<dimension> const& nearest_place() const { return place_; }

private:
    // 128 of them fill 1024 bytes. The heap of the standard library has its greatest entry on top.
    struct entry {
        float distance;
        std::uint32_t offset;

        bool operator<(entry const& b) const {
            return distance != b.distance ? distance > b.distance : offset > b.offset;
        }
    };

    static coordinates<dimension> place(finder_segment<dimension> const& s, float t) {
        coordinates<dimension> p = s.start;
        for (unsigned int i = 0; i < dimension; ++i) {
            if (t >= 1.0f) {
                p[i] = s.end(i);
            } else if (!(t <= 0.0f)) {
                p[i] += static_cast<double>(t) * static_cast<double>(s.d[i]);
            }
        }
        return p;
    }

    // Differences are narrowed only after they are taken.
    template <class difference>
    static float squared_to(difference const& along) {
        std::array<float, dimension> d;
        for (unsigned int i = 0; i < dimension; ++i) d[i] = static_cast<float>(along(i));
        return squared(d);
    }

    void handle(std::uint32_t offset) {
        if (offset < first_node_) return try_segment(offset);
        auto const box = load<finder_box<dimension>>(block_ + offset);
        float const distance = squared_to([&](unsigned int i) {
            return std::max(std::max(box.ranges[i].min - query_[i], query_[i] - box.ranges[i].max), 0.0);
        });
        if (!(best_ > distance)) return;
        prefetch(block_ + box.first);
        prefetch(block_ + box.second);
        waiting_.push_back({distance, offset});
        std::push_heap(waiting_.begin(), waiting_.end());
    }

    unsigned char const* block_;
    std::uint32_t first_node_;
    coordinates<dimension> query_;
    float best_ = std::numeric_limits<float>::infinity();
    std::uint32_t best_segment_ = 0;
    bool is_found_ = false;
    coordinates<dimension> place_;
    local_buffer<entry, 128> waiting_;
};

}  // namespace

template <unsigned int dimension>
void polyline_finder<dimension>::clear() {
    block_.clear();
    first_node_ = last_segment_ = 0;
}

template <unsigned int dimension>
void polyline_finder<dimension>::construct(std::vector<point> const& points) {
    clear();
    first_node_ = last_segment_ = build_polyline_tree<dimension>(points, block_);
}

template <unsigned int dimension>
point polyline_finder<dimension>::find_closest(point query) {
    auto const q = coordinates_of<dimension>(query);
    if (block_.empty() || !is_finite(q)) return point();

    polyline_search<dimension> search(block_, first_node_, q);
    if (last_segment_ < first_node_) search.try_segment(last_segment_);
    // The root is the last record: a box, or the only segment.
    std::size_t const root_bytes =
        block_.size() == first_node_ ? sizeof(finder_segment<dimension>) : sizeof(finder_box<dimension>);
    search.run(static_cast<std::uint32_t>(block_.size() - root_bytes));
    if (!search.is_found()) return point();

    last_segment_ = search.best_segment();
    return location(search.nearest_place());
}

template class polyline_finder<2>;
template class polyline_finder<3>;

}  // namespace tvmath
