#include "tvmath/nurb.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <new>

#include "transform_block.h"

inline namespace tvmath {
namespace {

template <class T>
void copy_or_leave(T const* from, std::uint32_t n, T* to) {
    if (from) std::copy_n(from, n, to);
}

// Locations carry their weight, so the offset is scaled by it.
void carry(TQ3RationalPoint4D& p, double const* m, int rows) {
    double const x = p.x, y = p.y, z = p.z;
    if (rows == 2) {
        p.x = m[0] * p.w + m[1] * x + m[2] * y;
        p.y = m[3] * p.w + m[4] * x + m[5] * y;
    } else {
        p.x = m[0] * p.w + m[1] * x + m[2] * y + m[3] * z;
        p.y = m[4] * p.w + m[5] * x + m[6] * y + m[7] * z;
        p.z = m[8] * p.w + m[9] * x + m[10] * y + m[11] * z;
    }
}

void carry_all(TQ3NURBCurveData& d, double const* map, int rows) {
    std::for_each(d.control_points, d.control_points + d.point_count,
                  [=](TQ3RationalPoint4D& p) { carry(p, map, rows); });
}

}  // namespace

namespace idioms {

nurb_storage* nurb_storage::allocate(std::uint32_t order, std::uint32_t point_count) {
    // 64 bits hold every size that two 32-bit counts can ask for.
    std::uint64_t const knots = std::uint64_t{order} + point_count;
    std::uint64_t const bytes = sizeof(nurb_storage) +
                                point_count * std::uint64_t{sizeof(TQ3RationalPoint4D)} +
                                knots * sizeof(double);
    if (knots > std::numeric_limits<std::uint32_t>::max()) return nullptr;
    if (bytes > std::uint64_t{std::numeric_limits<std::size_t>::max() / 2}) return nullptr;
    void* const block = ::operator new(static_cast<std::size_t>(bytes), std::nothrow);
    return block ? ::new (block) nurb_storage(order, point_count) : nullptr;
}

nurb_storage::nurb_storage(std::uint32_t order, std::uint32_t point_count) : container(order) {
    static_assert(sizeof(nurb_storage) % alignof(TQ3RationalPoint4D) == 0, "points lie behind the fields");
    static_assert(sizeof(TQ3RationalPoint4D) % alignof(double) == 0, "knots lie behind the points");
    auto* const points =
        reinterpret_cast<TQ3RationalPoint4D*>(reinterpret_cast<std::byte*>(this) + sizeof(nurb_storage));
    auto* const knots = reinterpret_cast<double*>(std::uninitialized_value_construct_n(points, point_count));
    std::uninitialized_value_construct_n(knots, std::size_t{order} + point_count);
    data = {order, point_count, points, knots};
}

nurb_storage* nurb_storage::clone() const {
    nurb_storage* const fresh = allocate(data.order, data.point_count);
    if (!fresh) return nullptr;
    std::copy_n(data.control_points, data.point_count, fresh->data.control_points);
    std::copy_n(data.knot_values, data.order + data.point_count, fresh->data.knot_values);
    return fresh;
}

}  // namespace idioms

nurb::nurb() : nurb(0, 0) {}

nurb::nurb(std::uint32_t order, std::uint32_t point_count)
    : block_(idioms::nurb_storage::allocate(order, point_count)) {
    block_.element();
}

nurb::nurb(TQ3NURBCurveData const& data) : nurb(data.order, data.point_count) {
    TQ3NURBCurveData& own = block_.element().data;
    copy_or_leave(data.control_points, data.point_count, own.control_points);
    copy_or_leave(data.knot_values, data.order + data.point_count, own.knot_values);
}

nurb::operator TQ3NURBCurveData&() {
    return own_data();
}

nurb::operator TQ3NURBCurveData const&() const {
    return data();
}

TQ3NURBCurveData& nurb::own_data() {
    // Acquire, so that reads through a handle that another thread has just released stand before our writes.
    if (block_.element().reference_count.load(std::memory_order_acquire) > 1) {
        idioms::ref<idioms::nurb_storage> fresh(block_->clone());
        fresh.element();  // raises before this curve is lost
        block_ = std::move(fresh);
    }
    return block_->data;
}

void nurb::set_knot(unsigned int i, double value) {
    own_data().knot_values[i] = value;
}

void nurb::set_control_point(unsigned int i, TQ3RationalPoint4D const& p) {
    TQ3RationalPoint4D const copy = p;  // which may lie in the block that is given up
    own_data().control_points[i] = copy;
}

void nurb::redim(std::uint32_t order, std::uint32_t point_count) {
    TQ3NURBCurveData const& from = data();
    if (order == from.order && point_count == from.point_count) return;
    nurb fresh(order, point_count);
    TQ3NURBCurveData& to = fresh.own_data();
    std::copy_n(from.control_points, std::min(point_count, from.point_count), to.control_points);
    std::copy_n(from.knot_values, std::min(order + point_count, knots()), to.knot_values);
    swap(*this, fresh);
}

nurb& nurb::operator*=(transform const& t) {
    int const rows = transform_detail::rows_of(t);
    if (rows != 0) carry_all(own_data(), t.begin(), rows);
    return *this;
}

nurb& nurb::operator/=(transform const& t) {
    int const rows = transform_detail::rows_of(t);
    if (rows != 0) carry_all(own_data(), t.begin() + transform_detail::map_size(rows), rows);
    return *this;
}

nurb& nurb::operator+=(point const& p) {
    point offset = p;
    offset.promote3d();
    if (offset.x() == 0 && offset.y() == 0 && offset.z() == 0) return *this;
    TQ3NURBCurveData& d = own_data();
    for (TQ3RationalPoint4D *q = d.control_points, *end = q + d.point_count; q != end; ++q) {
        q->x += offset.x() * q->w;
        q->y += offset.y() * q->w;
        q->z += offset.z() * q->w;
    }
    return *this;
}

nurb& nurb::operator-=(point const& p) {
    return *this += -p;
}

}  // namespace tvmath
