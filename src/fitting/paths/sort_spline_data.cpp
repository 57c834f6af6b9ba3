#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <tuple>

#include "measured_path.h"
#include "nearest_places.h"
#include "tvmath/path_fit.h"

inline namespace tvmath {
namespace {

using indices = std::vector<std::uint32_t>;
constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

// What 2-opt may try for each place; more brings next to nothing along a curve.
constexpr std::size_t neighbours = 8;

// The points in the order of their first occurrence, with those in the very same place behind the first.
struct distinct_places {
    std::vector<xyz> places;
    std::vector<indices> points;

    explicit distinct_places(std::span<point const> list) {
        indices order(list.size());
        std::iota(order.begin(), order.end(), 0u);
        std::vector<xyz> all;
        for (point const& p : list) all.emplace_back(p);
        auto const key = [&](std::uint32_t i) { return std::tie(all[i].x, all[i].y, all[i].z); };
        std::sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
            return key(a) < key(b) || (key(a) == key(b) && a < b);
        });
        indices first(list.size());
        for (std::size_t i = 0; i < order.size(); ++i) {
            bool const is_again = i > 0 && key(order[i]) == key(order[i - 1]);
            first[order[i]] = is_again ? first[order[i - 1]] : order[i];
        }
        indices number(list.size());
        for (std::uint32_t i = 0; i < first.size(); ++i) {
            if (first[i] == i) {
                number[i] = static_cast<std::uint32_t>(places.size());
                places.push_back(all[i]);
                points.emplace_back();
            }
            points[number[first[i]]].push_back(i);
        }
    }
};

// Joins places to one path by the shortest edges that go on fitting: the greedy heuristic.
class greedy_path {
public:
    explicit greedy_path(std::vector<xyz> const& places)
        : places_(places), root_(places.size()), links_(places.size(), {none, none}), near_(places.size()) {
        std::iota(root_.begin(), root_.end(), 0u);
        indices members = root_;
        for (std::size_t count = neighbours; members.size() > 1; count = 4) {
            bool const is_first = count == neighbours;
            join_nearest(nearest_places(places_, members), members, count, is_first);
            members.erase(std::remove_if(members.begin(), members.end(),
                                         [this](std::uint32_t i) { return links_[i][1] != none; }),
                          members.end());
            if (joined_ + 1 == places_.size()) break;
        }
    }

    indices route() const {
        indices path;
        std::uint32_t before = none, here = 0;
        while (links_[here][1] != none) ++here;  // an end
        while (here != none) {
            path.push_back(here);
            std::uint32_t const next = links_[here][0] == before ? links_[here][1] : links_[here][0];
            before = here;
            here = next;
        }
        return path;
    }
    std::vector<indices> const& near() const { return near_; }

private:
    std::uint32_t root_of(std::uint32_t i) {
        while (root_[i] != i) i = root_[i] = root_[root_[i]];
        return i;
    }

    // Tries the edges to the nearest members of other pieces, the shortest first. The shortest of all always
    // fits, so that each round leaves fewer pieces, by far most often less than half of them.
    void join_nearest(nearest_places const& tree, indices const& members, std::size_t count, bool keep) {
        std::vector<std::tuple<double, std::uint32_t, std::uint32_t>> edges;
        for (std::uint32_t const i : members) {
            std::uint32_t const own = root_of(i);
            auto const found =
                tree.near(places_[i], count, [&](std::uint32_t j) { return root_of(j) != own; });
            for (auto const& [distance, j] : found) {
                edges.emplace_back(distance, std::min(i, j), std::max(i, j));
                if (keep) near_[i].push_back(j);
            }
        }
        std::sort(edges.begin(), edges.end());
        for (auto const& [distance, i, j] : edges) join(i, j);
    }

    void join(std::uint32_t i, std::uint32_t j) {
        if (links_[i][1] != none || links_[j][1] != none) return;
        std::uint32_t const a = root_of(i), b = root_of(j);
        if (a == b) return;
        root_[a] = b;
        links_[i][links_[i][0] == none ? 0 : 1] = j;
        links_[j][links_[j][0] == none ? 0 : 1] = i;
        ++joined_;
    }

    std::vector<xyz> const& places_;
    indices root_;
    std::vector<std::array<std::uint32_t, 2>> links_;
    std::vector<indices> near_;
    std::size_t joined_ = 0;
};

// Shortens a tour by exchanging two of its edges, as long as one of the new edges leads to a near neighbour.
// An open path is a tour over one more place, which is no distance away from any.
class two_opt {
public:
    two_opt(std::vector<xyz> const& places, std::vector<indices> const& near, indices route, bool closed)
        : places_(places), near_(near), tour_(std::move(route)) {
        if (!closed) tour_.push_back(static_cast<std::uint32_t>(places.size()));
        position_.resize(tour_.size());
        for (std::uint32_t i = 0; i < tour_.size(); ++i) position_[tour_[i]] = i;
    }

    // The bound on the work, not on the time, makes the order the same on every machine.
    indices improve() {
        indices waiting(tour_.rbegin(), tour_.rend());
        std::vector<char> is_waiting(tour_.size(), 1);
        work_left_ = 1000000 + 100 * tour_.size();
        while (!waiting.empty() && work_left_ > 0) {
            std::uint32_t const a = waiting.back();
            waiting.pop_back();
            is_waiting[a] = 0;
            std::array<std::uint32_t, 4> ends;
            while (work_left_ > 0 && exchange_at(a, ends)) {
                for (std::uint32_t const e : ends) {
                    if (!is_waiting[e]) waiting.push_back(e);
                    is_waiting[e] = 1;
                }
            }
        }
        return tour_;
    }

private:
    double distance(std::uint32_t a, std::uint32_t b) const {
        if (a >= places_.size() || b >= places_.size()) return 0;
        return length(places_[a] - places_[b]);
    }
    std::uint32_t beside(std::uint32_t a, bool ahead) const {
        auto const n = static_cast<std::uint32_t>(tour_.size());
        return tour_[(position_[a] + (ahead ? 1 : n - 1)) % n];
    }

    // Edges a-b and c-d become a-c and b-d, with b and d both ahead or both behind.
    bool exchange_at(std::uint32_t a, std::array<std::uint32_t, 4>& ends) {
        if (a >= places_.size()) return false;
        for (bool const ahead : {true, false}) {
            std::uint32_t const b = beside(a, ahead);
            double const ab = distance(a, b);
            for (std::uint32_t const c : near_[a]) {
                double const ac = distance(a, c);
                if (!(ac < ab)) break;
                std::uint32_t const d = beside(c, ahead);
                double const old_length = ab + distance(c, d);
                // More than rounding, so that no exchange is undone for ever.
                if (d == a || !(old_length - ac - distance(b, d) > 1e-12 * old_length)) continue;
                ends = {a, b, c, d};
                ahead ? reverse(position_[b], position_[c]) : reverse(position_[c], position_[b]);
                return true;
            }
        }
        return false;
    }

    // Turns round the part from one position on to another, or, which is the same tour, all the rest.
    void reverse(std::size_t from, std::size_t to) {
        std::size_t const n = tour_.size();
        std::size_t count = (to + n - from) % n + 1;
        if (2 * count > n) {
            std::swap(from, to);
            from = (from + 1) % n;
            to = (to + n - 1) % n;
            count = n - count;
        }
        work_left_ -= std::min(work_left_, count / 2 + 1);
        for (std::size_t i = 0; i < count / 2; ++i) {
            std::swap(tour_[from], tour_[to]);
            position_[tour_[from]] = static_cast<std::uint32_t>(from);
            position_[tour_[to]] = static_cast<std::uint32_t>(to);
            from = (from + 1) % n;
            to = (to + n - 1) % n;
        }
    }

    std::vector<xyz> const& places_;
    std::vector<indices> const& near_;
    indices tour_, position_;
    std::size_t work_left_ = 0;
};

// The route in the sense that agrees with the list as it came; place numbers ascend with the list.
void turn_to_list(indices& route, std::size_t places, bool closed) {
    auto const start =
        std::find(route.begin(), route.end(), closed ? 0u : static_cast<std::uint32_t>(places));
    std::rotate(route.begin(), start, route.end());
    if (!closed) route.erase(route.begin());
    bool const is_backward = closed ? route[1] > route.back() : route.front() > route.back();
    if (is_backward) std::reverse(route.begin() + (closed ? 1 : 0), route.end());
}

bool sort_list(std::span<point> list, bool closed) {
    for (point const& p : list) {
        if (p.is_trivial() || !xyz(p).is_finite()) return false;
    }
    if (list.size() < 3 || list.size() >= none) return list.size() < 3;
    distinct_places const distinct(list);
    std::size_t const n = distinct.places.size();
    indices route(n);
    std::iota(route.begin(), route.end(), 0u);
    if (n > 2) {
        greedy_path const greedy(distinct.places);
        route = two_opt(distinct.places, greedy.near(), greedy.route(), closed).improve();
        turn_to_list(route, n, closed);
    }
    std::vector<point> sorted;
    sorted.reserve(list.size());
    for (std::uint32_t const place : route) {
        for (std::uint32_t const i : distinct.points[place]) sorted.push_back(list[i]);
    }
    std::copy(sorted.begin(), sorted.end(), list.begin());
    return true;
}

}  // namespace

bool sort_spline_data(std::vector<point>& points, bool closed) {
    return sort_list(points, closed);
}

bool sort_spline_data(idioms::array<point>& points, bool closed) {
    return sort_list({points.lazycopy_begin(), points.capacity()}, closed);
}

}  // namespace tvmath
