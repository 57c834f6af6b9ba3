#include "constraint_list.h"

inline namespace tvmath {
namespace geometry_fitter {
namespace {

kind_rule rule_of(counting_rules const& rules, std::type_info const& kind) {
    if (kind == centered()) return rules.centered;
    if (kind == through()) return rules.through;
    if (kind == tangent()) return rules.tangent;
    if (kind == parallel() || kind == perpendicular()) return rules.direction;
    return {};
}

bool share_a_rule(std::type_info const& a, std::type_info const& b) {
    auto const directs = [](std::type_info const& kind) {
        return kind == parallel() || kind == perpendicular();
    };
    return a == b || (directs(a) && directs(b));
}

int conditions_of(counting_rules const& rules, constraint const* list) {
    int sum = 0;
    for (; list; list = list->next) sum += rule_of(rules, typeid(*list)).conditions;
    return sum;
}

}  // namespace

bool has_room(counting_rules const& rules, constraint const* list, std::type_info const& kind) {
    kind_rule const rule = rule_of(rules, kind);
    bool fits = kind == fit();
    if (!fits && rule.most == 0) return false;
    int alike = 0;
    for (constraint const* c = list; c; c = c->next) {
        fits |= typeid(*c) == fit();
        alike += share_a_rule(typeid(*c), kind);
    }
    if (kind != fit() && alike >= rule.most) return false;
    return conditions_of(rules, list) + rule.conditions + (fits ? 1 : 0) <= rules.unknowns;
}

int redundancy(counting_rules const& rules, constraint const* list) {
    std::size_t points = 0;
    for (constraint const* c = list; c; c = c->next) {
        if (typeid(*c) == fit()) points += static_cast<fit_cnst const*>(c)->points.size();
    }
    return conditions_of(rules, list) + static_cast<int>(points) - rules.unknowns;
}

bool prepare(constraint* list) {
    for (constraint const* c = list; c; c = c->next) {
        if (!c->is_valid()) return false;
    }
    fit_cnst* const joined = next_of<fit_cnst>(list);
    if (!joined) return true;
    for (constraint** link = &joined->next; *link;) {
        constraint* const c = *link;
        if (typeid(*c) != fit()) {
            link = &c->next;
            continue;
        }
        std::vector<point> const& more = static_cast<fit_cnst*>(c)->points;
        joined->points.insert(joined->points.end(), more.begin(), more.end());
        *link = c->next;
        delete c;
    }
    return true;
}

std::vector<point> through_points(constraint* list) {
    std::vector<point> points;
    for (auto* c = next_of<through_cnst>(list); c; c = next_of<through_cnst>(c->next)) {
        points.push_back(c->place);
    }
    return points;
}

std::vector<transform> touched_shapes(constraint* list) {
    std::vector<transform> shapes;
    for (auto* c = next_of<tangent_cnst>(list); c; c = next_of<tangent_cnst>(c->next)) {
        shapes.push_back(c->touched);
    }
    return shapes;
}

fitter::~fitter() {
    while (first_) {
        constraint* const c = first_;
        first_ = c->next;
        delete c;
    }
}

void fitter::add(constraint* c) {
    if (!c || !can_add(typeid(*c))) return;
    for (constraint const* held = first_; held; held = held->next) {
        if (held == c) return;  // twice in the list it would be deleted twice
    }
    c->next = first_;
    first_ = c;
}

}  // namespace geometry_fitter
}  // namespace tvmath
