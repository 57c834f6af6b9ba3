#include "tvmath/xml_geometry.h"

#include <gtest/gtest.h>

#include <memory>

#include "persistence/xml_files.h"
#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

using namespace TVXML;

std::string text_of(kv::XmlElement const& element) {
    std::string text = "<" + to_utf8(element.name);
    for (auto const& a : element.attributes) text += " " + to_utf8(a.name) + "=" + to_utf8(a.value);
    text += ">";
    for (auto const& child : element.children) text += text_of(*child);
    return text + "</>";
}
std::string text_of(XmlGeometry const& value) {
    return text_of(*make_element(value));
}

point at(double x, double y) {
    return point(true, x, y);
}
point at(double x, double y, double z) {
    return point(true, x, y, z);
}

// Names, order and numbers as they stand in the tables that other programs go by.
TEST(XmlGeometry, WritesTheMembersThatAreSetInTheOrderOfTheTables) {
    point const c = at(1, 2), d = at(0.1, 0.2, 1.0 / 3);
    std::string const center = "<Center XAxis=1 YAxis=2></>";
    XmlAngle angle;
    angle.vertex = XmlPoint(c);
    XmlSystem system(transform::rotation(0.5).translate(1, 2));
    XmlORing oring;
    oring.center = XmlPoint(c);
    oring.inner_radius = 3;
    curve const path(c, at(3, 4));
    std::pair<std::unique_ptr<XmlGeometry>, std::string> cases[] = {
        {std::make_unique<XmlPosition>(c), "<Position XAxis=1 YAxis=2></>"},
        {std::make_unique<XmlPoint>(d), "<Point XAxis=0.1 YAxis=0.2 ZAxis=0.33333333></>"},
        {std::make_unique<XmlPoint>(), "<Point></>"},
        {std::make_unique<XmlDirection>(point(false, 3, 4)), "<Direction XAxis=3 YAxis=4></>"},
        {std::make_unique<XmlLine>(line(c, at(3, 2))),
         "<Line><Start-Point XAxis=1 YAxis=2></><End-Point XAxis=3 YAxis=2></></>"},
        {std::make_unique<XmlDistance>(line(c, at(3, 2))),
         "<Distance><Start-Point XAxis=1 YAxis=2></><End-Point XAxis=3 YAxis=2></></>"},
        {std::make_unique<XmlCircle>(circle(3, c)), "<Circle radius=3>" + center + "</>"},
        {std::make_unique<XmlArc>(), "<Arc radius=0 Start-Angle=0 End-Angle=0></>"},
        {std::make_unique<XmlEllipse>(ellipse(4, 3, 0.5, c)),
         "<Ellipse Major-Radius=4 Minor-Radius=3 orientation=0.5>" + center + "</>"},
        {std::make_unique<XmlAngle>(angle),
         "<Angle Start-Angle=0 Included-Angle=0 Bisector-Direction=0><Vertex XAxis=1 YAxis=2></></>"},
        {std::make_unique<XmlSystem>(system),
         "<System yaw=0.5 pitch=0 roll=0><Position XAxis=1 YAxis=2></></>"},
        {std::make_unique<XmlComposite>(), "<Composite yaw=0 pitch=0 roll=0></>"},
        {std::make_unique<XmlRectangle>(rectangle(4, 3, 0.5, c)),
         "<Rectangle width=4 height=3 orientation=0.5>" + center + "</>"},
        {std::make_unique<XmlGap>(gap(4, 3, 0.5, c)),
         "<Gap width=4 height=3 orientation=0.5>" + center + "</>"},
        {std::make_unique<XmlSlot>(slot(4, 3, 0.5, c)),
         "<Slot Major-Radius=4 Minor-Radius=3 orientation=0.5>" + center + "</>"},
        {std::make_unique<XmlORing>(oring), "<ORing Inner-Radius=3 Outer-Radius=0>" + center + "</>"},
        {std::make_unique<XmlCurve>(path),
         "<Open-Spline><Point XAxis=1 YAxis=2></><Point XAxis=3 YAxis=4></></>"},
        {std::make_unique<XmlOpenSpline>(path),
         "<Open-Spline><Bezier-Curve><Point XAxis=1 YAxis=2></><Point XAxis=3 YAxis=4></></></>"},
        {std::make_unique<XmlClosedSpline>(), "<Closed-Spline></>"},
        {std::make_unique<XmlPlane>(plane(c, point(false, 0, 0, 2))),
         "<Plane width=0 height=0><Center XAxis=1 YAxis=2 ZAxis=0></><Normal XAxis=0 YAxis=0 ZAxis=1></></>"},
        {std::make_unique<XmlSphere>(sphere(3, at(1, 2, 0))),
         "<Sphere radius=3><Center XAxis=1 YAxis=2 ZAxis=0></></>"},
        {std::make_unique<XmlCylinder>(cylinder(3, 4, c, point(false, 0, 0, 2))),
         "<Cylinder radius=3 height=4><Center XAxis=1 YAxis=2 ZAxis=0></><Direction XAxis=0 YAxis=0 "
         "ZAxis=1></></>"},
        {std::make_unique<XmlCone>(cone(c, at(3, 2), 5, 6)),
         "<Cone Radius0=5 Radius1=6><Point0 XAxis=1 YAxis=2></><Point1 XAxis=3 YAxis=2></></>"},
    };
    for (auto const& [value, text] : cases) {
        EXPECT_EQ(text_of(*value), text);
        auto const read = read_xml(*make_element(*value));
        ASSERT_FALSE(!read) << text;
        EXPECT_TRUE(typeid(*read) == typeid(*value)) << text;
        EXPECT_EQ(text_of(*read), text);
        EXPECT_EQ(read->is_trivial(), value->is_trivial()) << text;
    }
    HandlerTable const& all = *XmlArc::GetXmlBindingHandlers();
    ASSERT_EQ(all.size(), 4u);
    EXPECT_EQ(XmlArc::GetXmlBindingAttributeHandlers()->size(), 3u);
    EXPECT_EQ(XmlCurve::GetXmlBindingAggregateHandlers()->size(), 1u);
    EXPECT_EQ(all[0], (*XmlCircle::GetXmlBindingHandlers())[0]);
}

// Records of every kind that XML has, with random contents that it can tell.
class random_records {
public:
    explicit random_records(seeded_random& random) : random_(random) {}

    point place() { return solid_ ? at(some(), some(), some()) : at(some(), some()); }
    std::vector<ctl::ref<Geometry_Description>> one_of_each(bool solid) {
        solid_ = solid;
        list_.clear();
        add<Point_Description>().position = place();
        point const a = place();
        Segment_Description& segment = add<Segment_Description>();
        segment.geometry = line(a, place());
        if (solid) segment.apply_transform(transform::rotation(angle(), angle(), angle()));
        add<Circle_Description>().geometry = circle(size(), place());
        add<Ellipse_Description>().geometry = ellipse(size(), size(), angle(), place());
        if (random_.coin())
            static_cast<Ellipse_Description&>(*list_.back()).geometry.shear_x(random_.uniform(-1, 1));
        add<Rectangle_Description>().geometry = rectangle(size(), size(), angle(), place());
        add<Gap_Description>().geometry = gap(size(), size(), angle(), place());
        double const width = size();
        add<Slot_Description>().geometry = slot(width + size(), width, angle(), place());
        add<Plane_Description>().geometry = plane(place(), direction());
        add<Sphere_Description>().geometry = sphere(size(), place());
        add<Cylinder_Description>().geometry = cylinder(size(), size(), place(), direction());
        add<Cone_Description>().geometry = cone(a, place(), size(), size());
        auto const placement = [&] {
            if (!solid) return transform::rotation(angle()).translate(place());
            double const upright = random_.coin() ? pi / 2 : -pi / 2;  // where yaw and roll are one
            return transform::rotation(angle(), random_.coin() ? angle() / 2 : upright, angle())
                .translate(place());
        };
        add<Transform_Description>().geometry = placement();
        add<Composite_Description>().geometry = placement();
        double const radius = size();
        Arc_Description& arc = add<Arc_Description>();
        arc.circle = circle(ellipse(radius, radius, angle(), place()));
        arc.included_angle = random_.below(8) == 0 ? 2 * pi : random_.uniform(-2 * pi, 2 * pi);
        Angle_Description& angular = add<Angle_Description>();
        angular.arc = circle(ellipse(1, 1, angle(), place()));
        angular.start_angle = angle();
        angular.included_angle = angle();
        ORing_Description& oring = add<ORing_Description>();
        oring.placement = transform(place());
        oring.inner = ring(size());
        oring.outer = ring(size());
        curve path(7);
        for (int i = 0; i < 7; ++i) path.lazycopy_begin()[i] = place();
        OpenSpline_Description& open = add<OpenSpline_Description>();
        open.path = path;
        calculate_bezier_length(path, open.length);
        ClosedSpline_Description& closed = add<ClosedSpline_Description>();
        closed.path = path;
        closed.length = open.length;
        calculate_closed_bezier_moments(path, closed.area, closed.centroid);
        return list_;
    }

private:
    template <class record>
    record& add() {
        auto const fresh = ctl::make_ref<record>();
        list_.push_back(fresh);
        return *fresh;
    }
    double some() { return random_.uniform(-100, 100); }
    double size() { return random_.uniform(1, 100); }
    double angle() { return random_.uniform(-pi, pi); }
    point direction() { return normalize(point(false, some(), some(), some())); }

    seeded_random& random_;
    bool solid_ = false;
    std::vector<ctl::ref<Geometry_Description>> list_;
};

// What the feature of a record is, whatever the axes that it is held by.
class feature_numbers {
public:
    std::vector<double> list;
    explicit feature_numbers(Geometry_Description const& d) {
        if (auto const* p = as<Point_Description>(d)) add({p->position});
        if (auto const* l = as<Segment_Description>(d)) {
            add({l->geometry.basis(0) - l->geometry.basis(1), l->geometry.basis(0) + l->geometry.basis(1)});
        }
        if (auto const* c = as<Circle_Description>(d)) outline(c->geometry);
        if (auto const* e = as<Ellipse_Description>(d)) outline(e->geometry);
        if (auto const* r = as<Rectangle_Description>(d)) outline(r->geometry);
        if (auto const* g = as<Gap_Description>(d)) outline(g->geometry), add({flat(g->geometry.basis(1))});
        if (auto const* s = as<Slot_Description>(d)) outline(s->geometry);
        if (auto const* s = as<Sphere_Description>(d)) outline(s->geometry);
        if (auto const* p = as<Plane_Description>(d)) {
            point const n = p->geometry.normal();
            add({n});
            list.push_back(dot(n, p->geometry.center()));
        }
        if (auto const* c = as<Cylinder_Description>(d)) {
            add({c->geometry.basis(0), c->geometry.basis(3)});
            list.push_back(c->geometry.radius());
        }
        if (auto const* c = as<Cone_Description>(d)) {
            add({c->geometry.base, c->geometry.top, c->geometry.axis});
            list.insert(list.end(), {c->geometry.base_radius, c->geometry.top_radius});
        }
        if (auto const* t = as<Transform_Description>(d)) frame(t->geometry);
        if (auto const* t = as<Composite_Description>(d)) frame(t->geometry);
        if (auto const* a = as<Arc_Description>(d)) {
            outline(a->circle);
            // Points of the arc alone, from either end.
            double const half = std::fabs(a->included_angle) / 2;
            for (double const t : {-half, half}) add({make_polar_point(1, t) * a->circle});
            list.push_back(half);
        }
        if (auto const* a = as<Angle_Description>(d)) {
            frame(a->arc);
            list.insert(list.end(), {a->start_angle, a->included_angle});
        }
        if (auto const* o = as<ORing_Description>(d)) {
            add({o->placement.basis(0)});
            list.insert(list.end(), {o->inner.radius(), o->outer.radius()});
        }
        if (auto const* s = as<OpenSpline_Description>(d)) path(s->path, s->length, 0);
        if (auto const* s = as<ClosedSpline_Description>(d))
            path(s->path, s->length, s->area), add({s->centroid * (s->area / 1e5)});
    }

private:
    template <class record>
    static record const* as(Geometry_Description const& d) {
        return dynamic_cast<record const*>(&d);
    }
    // A direction as far as the line along it goes.
    static point flat(point p) { return p.y() < 0 ? -p : p; }

    void add(std::initializer_list<point> points) {
        for (point const& p : points) {
            list.push_back(p.dimension());
            for (unsigned int i = 1; i <= p.dimension(); ++i) list.push_back(p[i]);
        }
    }
    void frame(transform const& t) { add({t.basis(0), t.basis(1), t.basis(2), t.basis(3)}); }
    // Extents as seen from several sides.
    template <class shape>
    void outline(shape const& s) {
        add({s.basis(0)});
        for (double const turn : {0.0, 0.5, 1.0}) {
            shape turned = s;
            turned *= transform::rotation(turn);
            CRealRect const r = turned.get_bounding_rect();
            list.insert(list.end(), {r.left, r.bottom, r.right, r.top});
        }
    }
    void path(curve const& c, double length, double area) {
        for (point const& p : c) add({p});
        list.insert(list.end(), {length / 1000, area / 1000});  // the length is an approximation to 1e-5
    }
};

TEST(XmlGeometry, RecordsComeBackFromAFileAsTheSameFeatures) {
    test_folder const folder;
    seeded_random random(7300);
    random_records records(random);
    for (int trial = 0; trial < 200; ++trial) {
        auto const list = records.one_of_each(trial % 2 != 0);
        auto const writer = kvxml::write_xml_file(folder.name().c_str());
        ASSERT_TRUE(writer->StartElement(u"Features"_w, {}));
        for (auto const& record : list) ASSERT_TRUE(write_xml(*writer, *make_xml(*record)));
        ASSERT_TRUE(writer->EndElement() && writer->Close());

        std::vector<ctl::ref<kv::XmlElement>> document;
        ASSERT_TRUE(kv::read_xml_file(folder.name().c_str(), document));
        ASSERT_EQ(document[0]->children.size(), list.size());
        for (std::size_t i = 0; i < list.size(); ++i) {
            auto const record = make_record(*read_xml(*document[0]->children[i]));
            std::string const text = text_of(*document[0]->children[i]);
            ASSERT_FALSE(!record) << text;
            EXPECT_EQ(record->type(), list[i]->type());
            std::vector<double> const a = feature_numbers(*list[i]).list, b = feature_numbers(*record).list;
            ASSERT_EQ(a.size(), b.size()) << text;
            // The eighth digit of coordinates and sizes up to 300, that of angles at 100 from the centre, and
            // of areas and lengths what those make of it.
            for (std::size_t k = 0; k < a.size(); ++k) ASSERT_NEAR(a[k], b[k], 5e-5) << text << " " << k;
        }
    }
}

TEST(XmlGeometry, ArcsRunAnticlockwiseFromStartToEnd) {
    struct {
        double bisector, included, start, end;
    } const cases[] = {{0, pi, -pi / 2, pi / 2},
                       {0, -pi, -pi / 2, pi / 2},
                       {pi, pi / 2, 3 * pi / 4, -3 * pi / 4},
                       {0, 3 * pi / 2, -3 * pi / 4, 3 * pi / 4},
                       {pi / 2, 2 * pi, -pi / 2, -pi / 2}};
    for (auto const& c : cases) {
        Arc_Description d;
        d.circle = circle(ellipse(2, 2, c.bisector, at(1, 1)));
        d.included_angle = c.included;
        XmlArc const arc(d);
        EXPECT_NEAR(arc.start_angle, c.start, 1e-15);
        EXPECT_NEAR(arc.end_angle, c.end, 1e-15);
    }
}

TEST(XmlGeometry, NullFeaturesAndMissingPartsGiveTrivialValuesAndNoRecord) {
    for (unsigned long long type = 1; type < 0x8000000; type *= 2) {
        auto const record = Geometry_Description::create_ref(type);
        if (!record) continue;
        auto const value = make_xml(*record);
        constexpr unsigned long long without =
            0x4000 | 0x8000 | 0x80000 | 0x800000 | 0x1000000 | 0x2000000 | 0x4000000;
        ASSERT_EQ(!value, (type & without) != 0) << type;
        if (!value) continue;
        EXPECT_TRUE(value->is_trivial()) << type;
        EXPECT_TRUE(!make_record(*value)) << type;
        EXPECT_EQ(text_of(*value).find("<", 1), text_of(*value).find("</>")) << "no part is set";
    }
    kv::XmlElement element(u"Plane"_w);
    element.children.push_back(make_element(XmlPoint(at(1, 2))));
    element.children[0]->name = u"Center"_w;
    auto const read = read_xml(element);
    EXPECT_FALSE(read->is_trivial());
    EXPECT_TRUE(!make_record(*read));
    Plane_Description kept;
    kept.geometry = plane(at(1, 2, 3), point(false, 0, 0, 1));
    EXPECT_FALSE(XmlPlane().GetDescription(kept));
    EXPECT_EQ(kept.geometry.center(), at(1, 2, 3));
}

TEST(XmlGeometry, ReadsWhatOthersWriteAndPassesOverTheRest) {
    test_folder const folder;
    folder.write(
        "<x:Circle xmlns:x='u' colour='red' radius='no'><Note/><radius>2.5</radius><x:Center YAxis='-1e1' "
        "XAxis=' 1.5'/>"
        "<Center ZAxis='7'/></x:Circle>");
    std::vector<ctl::ref<kv::XmlElement>> document;
    ASSERT_TRUE(kv::read_xml_file(folder.name().c_str(), document));
    document[0]->children.emplace_back();
    XmlCircle circle_value;
    ASSERT_TRUE(read_xml(*document[0], circle_value));
    EXPECT_EQ(circle_value.radius, 2.5);
    EXPECT_EQ(circle_value.center.get_point(), at(1.5, -10, 7));
    document[0]->name = u"circle"_w;
    EXPECT_TRUE(!read_xml(*document[0]));
}

TEST(XmlStrings, OfNumbers) {
    wide_string text;
    xmlstring_make(text, 1.0 / 3);
    EXPECT_EQ(text, u"0.33333333"_w);
    xmlstring_make(text, domain_error_value);
    EXPECT_EQ(text, u""_w);
    xmlstring_make(text, -12LL);
    EXPECT_EQ(text, u"-12"_w);
    xmlstring_make(text, true);
    EXPECT_EQ(text, u"1"_w);
    struct {
        wide_string text;
        long long wide;
        int narrow;
    } const cases[] = {{u""_w, 0, 0},
                       {u" -12x"_w, -12, -12},
                       {u"abc"_w, 0, 0},
                       {u"+2147483648"_w, 2147483648, 0},
                       {u"-2147483648"_w, -2147483648, std::numeric_limits<int>::min()},
                       {u"9223372036854775807"_w, std::numeric_limits<long long>::max(), 0},
                       {u"9223372036854775808"_w, 0, 0}};
    for (auto const& c : cases) {
        long long wide = 7;
        int narrow = 7;
        xmlstring_extract(c.text, wide);
        xmlstring_extract(c.text, narrow);
        EXPECT_EQ(wide, c.wide) << to_utf8(c.text);
        EXPECT_EQ(narrow, c.narrow) << to_utf8(c.text);
    }
    double number = 7;
    xmlstring_extract(u""_w, number);
    EXPECT_EQ(number, 0);
}

}  // namespace
}  // namespace tvmath
