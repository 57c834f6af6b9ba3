#include <initializer_list>

#include "tvmath/xml_geometry.h"

inline namespace tvmath {
namespace TVXML {

namespace {

using handler = std::shared_ptr<PersistDataHandler>;

// The members of one class, in the order of writing. The owner is named, because a member may be inherited.
template <class owner>
struct members_of {
    static handler leaf(XmlToken name, double owner::*member) {
        return std::make_shared<LeafContentHandler<owner>>(name, member);
    }
    template <class part>
    static handler branch(XmlToken name, part owner::*member) {
        return std::make_shared<BranchContentHandler<owner, part>>(name, member);
    }
};

}  // namespace

BindingTables const& XmlPosition::bindings() {
    using m = members_of<XmlPosition>;
    static BindingTables const tables(
        nullptr, {m::leaf(tokens::XAxis, &XmlPosition::x),  //
                  m::leaf(tokens::YAxis, &XmlPosition::y), m::leaf(tokens::ZAxis, &XmlPosition::z)});
    return tables;
}

BindingTables const& XmlLine::bindings() {
    using m = members_of<XmlLine>;
    static BindingTables const tables(nullptr, {m::branch(tokens::Start_Point, &XmlLine::start),
                                                m::branch(tokens::End_Point, &XmlLine::end)});
    return tables;
}

BindingTables const& XmlCircle::bindings() {
    using m = members_of<XmlCircle>;
    static BindingTables const tables(nullptr, {m::branch(tokens::Center, &XmlCircle::center),
                                                m::leaf(tokens::radius, &XmlCircle::radius)});
    return tables;
}

BindingTables const& XmlArc::bindings() {
    using m = members_of<XmlArc>;
    static BindingTables const tables(
        &XmlCircle::bindings(),
        {m::leaf(tokens::Start_Angle, &XmlArc::start_angle), m::leaf(tokens::End_Angle, &XmlArc::end_angle)});
    return tables;
}

namespace {

template <class owner>
BindingTables oval_tables() {
    using m = members_of<owner>;
    return {nullptr,
            {m::template branch<XmlPoint>(tokens::Center, &owner::center),
             m::leaf(tokens::Major_Radius, &owner::major_radius),
             m::leaf(tokens::Minor_Radius, &owner::minor_radius),
             m::leaf(tokens::orientation, &owner::orientation)}};
}

template <class owner>
BindingTables box_tables() {
    using m = members_of<owner>;
    return {
        nullptr,
        {m::template branch<XmlPoint>(tokens::Center, &owner::center), m::leaf(tokens::width, &owner::width),
         m::leaf(tokens::height, &owner::height), m::leaf(tokens::orientation, &owner::orientation)}};
}

template <class owner>
BindingTables placement_tables() {
    using m = members_of<owner>;
    return {nullptr,
            {m::template branch<XmlPosition>(tokens::Position, &owner::position),
             m::leaf(tokens::yaw, &owner::yaw), m::leaf(tokens::pitch, &owner::pitch),
             m::leaf(tokens::roll, &owner::roll)}};
}

}  // namespace

BindingTables const& XmlEllipse::bindings() {
    static BindingTables const tables = oval_tables<XmlEllipse>();
    return tables;
}

BindingTables const& XmlSlot::bindings() {
    static BindingTables const tables = oval_tables<XmlSlot>();
    return tables;
}

BindingTables const& XmlRectangle::bindings() {
    static BindingTables const tables = box_tables<XmlRectangle>();
    return tables;
}

BindingTables const& XmlGap::bindings() {
    static BindingTables const tables = box_tables<XmlGap>();
    return tables;
}

BindingTables const& XmlSystem::bindings() {
    static BindingTables const tables = placement_tables<XmlSystem>();
    return tables;
}

BindingTables const& XmlComposite::bindings() {
    static BindingTables const tables = placement_tables<XmlComposite>();
    return tables;
}

BindingTables const& XmlAngle::bindings() {
    using m = members_of<XmlAngle>;
    static BindingTables const tables(
        nullptr,
        {m::branch(tokens::Vertex, &XmlAngle::vertex), m::leaf(tokens::Start_Angle, &XmlAngle::start_angle),
         m::leaf(tokens::Included_Angle, &XmlAngle::included_angle),
         m::leaf(tokens::Bisector_Direction, &XmlAngle::bisector_direction)});
    return tables;
}

BindingTables const& XmlORing::bindings() {
    using m = members_of<XmlORing>;
    static BindingTables const tables(nullptr, {m::branch(tokens::Center, &XmlORing::center),
                                                m::leaf(tokens::Inner_Radius, &XmlORing::inner_radius),
                                                m::leaf(tokens::Outer_Radius, &XmlORing::outer_radius)});
    return tables;
}

BindingTables const& XmlCurve::bindings() {
    using list = AggregateStlArrayHandler<std::vector<XmlPoint>, XmlCurve>;
    static BindingTables const tables(nullptr, {std::make_shared<list>(tokens::Point, &XmlCurve::points)});
    return tables;
}

BindingTables const& XmlOpenSpline::bindings() {
    using m = members_of<XmlOpenSpline>;
    static BindingTables const tables(nullptr, {m::branch(tokens::Bezier_Curve, &XmlOpenSpline::path)});
    return tables;
}

BindingTables const& XmlClosedSpline::bindings() {
    using m = members_of<XmlClosedSpline>;
    static BindingTables const tables(nullptr, {m::branch(tokens::Bezier_Curve, &XmlClosedSpline::path)});
    return tables;
}

BindingTables const& XmlPlane::bindings() {
    using m = members_of<XmlPlane>;
    static BindingTables const tables(
        nullptr, {m::branch(tokens::Center, &XmlPlane::center), m::branch(tokens::Normal, &XmlPlane::normal),
                  m::leaf(tokens::width, &XmlPlane::width), m::leaf(tokens::height, &XmlPlane::height)});
    return tables;
}

BindingTables const& XmlSphere::bindings() {
    using m = members_of<XmlSphere>;
    static BindingTables const tables(nullptr, {m::branch(tokens::Center, &XmlSphere::center),
                                                m::leaf(tokens::radius, &XmlSphere::radius)});
    return tables;
}

BindingTables const& XmlCylinder::bindings() {
    using m = members_of<XmlCylinder>;
    static BindingTables const tables(nullptr, {m::branch(tokens::Center, &XmlCylinder::center),
                                                m::branch(tokens::Direction, &XmlCylinder::direction),
                                                m::leaf(tokens::radius, &XmlCylinder::radius),
                                                m::leaf(tokens::height, &XmlCylinder::height)});
    return tables;
}

BindingTables const& XmlCone::bindings() {
    using m = members_of<XmlCone>;
    static BindingTables const tables(
        nullptr, {m::branch(tokens::Point0, &XmlCone::point0), m::branch(tokens::Point1, &XmlCone::point1),
                  m::leaf(tokens::Radius0, &XmlCone::radius0), m::leaf(tokens::Radius1, &XmlCone::radius1)});
    return tables;
}

}  // namespace TVXML
}  // namespace tvmath
