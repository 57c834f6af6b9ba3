#include "record_xml.h"

#include <algorithm>
#include <string_view>

#include "files/temporary_file.h"
#include "record_names.h"
#include "record_text.h"
#include "tvmath/persistence.h"
#include "tvmath/xml_geometry.h"

inline namespace tvmath {
namespace {

using namespace TVXML::tokens;

// A tree takes some fifty times the bytes of its document.
constexpr std::size_t largest_feature = std::size_t{1} << 24;

wide_string const list_name = as_wide(u"Points");

wide_string wide_path(temporary_file const& file) {
    std::u8string const path = file.path().u8string();
    return to_wide({reinterpret_cast<char const*>(path.data()), path.size()});
}

// Takes the points of a list as they come; of another document only the name of its root.
class list_reader final : public kvxml::SAXParseHandler {
public:
    wide_string root;
    std::vector<point> points;
    std::string fault;

    using SAXParseHandler::EndElement;

    bool is_list() const { return root == list_name; }

    void StartElement(kvxml::ISAXReader&, wide_string const& name,
                      kvxml::attribute_list const& attributes) override {
        ++depth_;
        if (depth_ == 1) root = name;
        if (depth_ == 1 || !is_list() || !fault.empty()) return;
        if (depth_ == 2 && Point == name) return take(attributes);
        fault = "holds a <" + to_utf8(name).substr(0, 40) + "> where a <Point> of the list is expected";
    }
    void EndElement(kvxml::ISAXReader&) override { --depth_; }

private:
    void take(kvxml::attribute_list const& attributes) {
        double xyz[3] = {};
        unsigned found = 0;
        for (auto const& [name, value] : attributes) {
            unsigned const i = XAxis == name ? 0 : YAxis == name ? 1 : ZAxis == name ? 2 : 3;
            if (i == 3) continue;
            if (!is_file_number(to_utf8(value), xyz[i])) {
                return complain(to_utf8(name) + " is not a finite number");
            }
            found |= 1u << i;
        }
        if ((found & 3) != 3) return complain("XAxis and YAxis are needed");
        points.push_back(found == 7 ? point(true, xyz[0], xyz[1], xyz[2]) : point(true, xyz[0], xyz[1]));
        if (points.back().dimension() != points.front().dimension())
            complain("another dimension than the first");
    }
    void complain(std::string const& what) {
        fault = "point " + std::to_string(points.size() + 1) + ": " + what;
    }

    std::size_t depth_ = 0;
};

// Attributes that hold numbers. The library takes 0 for what is none; a file with a typing error is refused.
bool has_bad_number(kv::XmlElement const& element, std::string& reason) {
    static TVXML::XmlToken const numbers[] = {
        XAxis,        YAxis,        ZAxis,        radius,       Start_Angle,    End_Angle,
        height,       width,        orientation,  yaw,          pitch,          roll,
        Major_Radius, Minor_Radius, Inner_Radius, Outer_Radius, Included_Angle, Bisector_Direction,
        Radius0,      Radius1};
    for (kv::XmlAttribute const& a : element.attributes) {
        bool const is_number = std::any_of(std::begin(numbers), std::end(numbers),
                                           [&](TVXML::XmlToken const& n) { return n == a.name; });
        double ignored = 0;
        if (!is_number || is_file_number(to_utf8(a.value), ignored)) continue;
        reason = to_utf8(a.name) + " of <" + to_utf8(element.name).substr(0, 40) + "> is not a finite number";
        return true;
    }
    return std::any_of(element.children.begin(), element.children.end(),
                       [&](auto const& child) { return has_bad_number(*child, reason); });
}

bool read_feature(wide_string const& path, std::shared_ptr<Geometry_Description>& record,
                  std::string& reason) {
    std::vector<ctl::ref<kv::XmlElement>> elements;
    if (!kv::read_xml_file(path.c_str(), elements) || elements.empty()) {
        reason = "cannot be read";
        return false;
    }
    if (has_bad_number(*elements.front(), reason)) return false;
    std::string const name = to_utf8(elements.front()->name).substr(0, 40);
    ctl::ref<TVXML::XmlGeometry> const value = TVXML::read_xml(*elements.front());
    if (!value) {
        reason = "<" + name + "> is no feature";
        return false;
    }
    ctl::ref<Geometry_Description> const made = TVXML::make_record(*value);
    if (!made) {
        reason = "<" + name + "> has not all parts of a feature";
        return false;
    }
    record.reset(made->create_copy());
    return true;
}

bool write_list(kvxml::ISAXWriter& writer, std::vector<point> const& points, int precision) {
    bool done = writer.StartElement(list_name, {});
    kvxml::attribute_list attributes;
    for (point const& p : points) {
        attributes.assign({{XAxis.text(), Persistence::to_ascii(p.x(), precision)},
                           {YAxis.text(), Persistence::to_ascii(p.y(), precision)}});
        if (p.is_3d()) attributes.emplace_back(ZAxis.text(), Persistence::to_ascii(p.z(), precision));
        done = done && writer.StartElement(Point.text(), attributes) && writer.EndElement();
    }
    return done && writer.EndElement();
}

}  // namespace

bool reads_xml() {
#ifdef TVMATH_READS_XML
    return true;
#else
    return false;
#endif
}

exit_status read_record_xml(std::string const& bytes, std::shared_ptr<Geometry_Description>& record,
                            std::string& reason) {
    if (!reads_xml()) {
        reason = "this build reads no XML";
        return exit_status::unreadable_input;
    }
    // The library reads files alone. A copy serves standard input and names that are not UTF-8 too.
    temporary_file const file;
    if (!file.write(bytes)) {
        reason = "no room for a temporary file";
        return exit_status::internal;
    }
    list_reader list;
    if (!kvxml::read_xml_file(wide_path(file).c_str(), &list)) {
        reason = "is no well-formed XML, or has a document type or more than 1000 levels, which are refused";
    } else if (!list.is_list()) {
        if (bytes.size() > largest_feature) {
            reason = "is larger than any feature, 16 MiB";
        } else if (read_feature(wide_path(file), record, reason)) {
            return exit_status::done;
        }
    } else if (!list.fault.empty()) {
        reason = list.fault;
    } else if (list.points.empty()) {
        reason = "holds no points";
    } else {
        auto const cloud = std::make_shared<PointCloud_Description>();
        cloud->points = std::move(list.points);
        record = cloud;
        return exit_status::done;
    }
    return exit_status::unreadable_input;
}

exit_status record_xml(Geometry_Description const& record, int precision, std::string& bytes,
                       std::string& reason) {
    auto const* const points = points_in(record);
    ctl::ref<TVXML::XmlGeometry> const value = TVXML::make_xml(record);
    if (!points && (!value || value->is_trivial())) {
        reason = with_article(record_name(record.type())) +
                 (!value ? " has no XML form" : " without geometry has no XML");
        return exit_status::no_answer;
    }
    temporary_file const file;
    ctl::ref<kvxml::ISAXWriter> writer = kvxml::write_xml_file(wide_path(file).c_str());
    bool const done =
        !!writer && (points ? write_list(*writer, *points, precision) : TVXML::write_xml(*writer, *value));
    if (done && writer->Close() && file.read(bytes)) return exit_status::done;
    reason = "no room for a temporary file";
    return exit_status::internal;
}

}  // namespace tvmath
