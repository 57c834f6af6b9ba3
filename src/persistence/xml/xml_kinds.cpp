#include <algorithm>
#include <typeinfo>

#include "tvmath/xml_geometry.h"

inline namespace tvmath {
namespace TVXML {

namespace {

// A class by what reading and writing need of it.
struct kind {
    std::type_info const* type;
    std::type_info const* record_type;
    XmlToken name;
    HandlerTable const* (*handlers)();
    ctl::ref<XmlGeometry> (*make)();
    ctl::ref<XmlGeometry> (*make_of)(Geometry_Description const& record);  // of exactly that record
    ctl::ref<Geometry_Description> (*record_of)(XmlGeometry const& value);
};

template <class T>
kind kind_of() {
    using record = typename T::record_type;
    kind result{&typeid(T),
                &typeid(record),
                T::static_xml_persistent_token(),
                &T::GetXmlBindingHandlers,
                [] { return ctl::ref<XmlGeometry>(ctl::make_ref<T>()); },
                nullptr,
                nullptr};
    if constexpr (!std::same_as<record, no_record>) {
        result.make_of = [](Geometry_Description const& from) {
            return ctl::ref<XmlGeometry>(ctl::make_ref<T>(static_cast<record const&>(from)));
        };
        result.record_of = [](XmlGeometry const& value) {
            auto const made = ctl::make_ref<record>();
            bool const filled = static_cast<T const&>(value).GetDescription(*made);
            return filled ? ctl::ref<Geometry_Description>(made) : ctl::ref<Geometry_Description>();
        };
    }
    return result;
}

template <class... classes>
std::vector<kind> kinds_of() {
    return {kind_of<classes>()...};
}

// Of two classes with one record or name the first is meant.
std::vector<kind> const& kinds() {
    static std::vector<kind> const list =
        kinds_of<XmlPosition, XmlPoint, XmlDirection, XmlLine, XmlDistance, XmlCircle, XmlArc, XmlEllipse,
                 XmlAngle, XmlSystem, XmlComposite, XmlRectangle, XmlGap, XmlSlot, XmlORing, XmlOpenSpline,
                 XmlCurve, XmlClosedSpline, XmlPlane, XmlSphere, XmlCylinder, XmlCone>();
    return list;
}

template <class test>
kind const* find_kind(test const& is_meant) {
    auto const found = std::find_if(kinds().begin(), kinds().end(), is_meant);
    return found == kinds().end() ? nullptr : &*found;
}

kind const* kind_of_value(XmlGeometry const& value) {
    return find_kind([&](kind const& k) { return *k.type == typeid(value); });
}

// Recursion is as deep as the classes are nested: twice.
bool write(kvxml::ISAXWriter& writer, XmlToken name, XmlGeometry const& value, HandlerTable const& handlers) {
    SaxAttributes attributes;
    value.XmlPrePassivate(attributes);
    for (PersistDataHandler const* handler : handlers) handler->write_attribute(value, attributes);
    if (!writer.StartElement(name.text(), attributes)) return false;
    for (PersistDataHandler const* handler : handlers) {
        for (std::size_t i = 0, n = handler->child_count(value); i < n; ++i) {
            XmlGeometry const& child = *handler->child(value, i);
            if (!write(writer, handler->name(), child, *handler->child_handlers())) return false;
        }
    }
    return writer.EndElement();
}

PersistDataHandler const* handler_of(HandlerTable const& handlers, wide_string const& name) {
    auto const found = std::find_if(handlers.begin(), handlers.end(),
                                    [&](PersistDataHandler const* h) { return h->name() == name; });
    return found == handlers.end() ? nullptr : *found;
}

void read(kv::XmlElement const& element, XmlGeometry& value, HandlerTable const& handlers) {
    SaxAttributes attributes;
    for (auto const& attribute : element.attributes) attributes.emplace_back(attribute.name, attribute.value);
    value.XmlPreRestore(attributes);
    for (auto const& [name, text] : attributes) {
        if (auto const* handler = handler_of(handlers, name)) handler->read_attribute(value, text);
    }
    for (ctl::ref<kv::XmlElement> const& child : element.children) {
        auto const* handler = !child ? nullptr : handler_of(handlers, child->name);
        if (!handler) continue;
        if (XmlGeometry* const part = handler->child_to_read(value)) {
            read(*child, *part, *handler->child_handlers());
        } else {
            handler->read_attribute(value, child->text);
        }
    }
    value.XmlPostRestore();
}

// A writer into a tree.
class element_writer final : public kvxml::ISAXWriter {
public:
    ctl::ref<kv::XmlElement> root;

    bool StartElement(wide_string const& name, kvxml::attribute_list const& attributes) override {
        auto const fresh = ctl::make_ref<kv::XmlElement>(name);
        for (auto const& [key, value] : attributes) fresh->attributes.emplace_back(key, value);
        if (open_.empty()) {
            root = fresh;
        } else {
            open_.back()->children.push_back(fresh);
        }
        open_.push_back(fresh.address());
        return true;
    }
    bool EndElement() override {
        open_.pop_back();
        return true;
    }
    bool AddData(wide_string const& text) override {
        open_.back()->text += text;
        return true;
    }
    bool Close() override { return open_.empty(); }

private:
    std::vector<kv::XmlElement*> open_;
};

}  // namespace

ctl::ref<XmlGeometry> make_xml(Geometry_Description const& record) {
    kind const* const k = find_kind([&](kind const& one) { return *one.record_type == typeid(record); });
    return k ? k->make_of(record) : ctl::ref<XmlGeometry>();
}

ctl::ref<Geometry_Description> make_record(XmlGeometry const& value) {
    kind const* const k = kind_of_value(value);
    return k && k->record_of ? k->record_of(value) : ctl::ref<Geometry_Description>();
}

bool write_xml(kvxml::ISAXWriter& writer, XmlGeometry const& value) {
    kind const* const k = kind_of_value(value);
    return k && write(writer, k->name, value, *k->handlers());
}

ctl::ref<kv::XmlElement> make_element(XmlGeometry const& value) {
    element_writer writer;
    return write_xml(writer, value) ? writer.root : ctl::ref<kv::XmlElement>();
}

bool read_xml(kv::XmlElement const& element, XmlGeometry& value) {
    kind const* const k = kind_of_value(value);
    if (k) read(element, value, *k->handlers());
    return k != nullptr;
}

ctl::ref<XmlGeometry> read_xml(kv::XmlElement const& element) {
    ctl::ref<XmlGeometry> first;
    for (kind const& k : kinds()) {
        if (!(k.name == element.name)) continue;
        ctl::ref<XmlGeometry> const value = k.make();
        read(element, *value, *k.handlers());
        // Of two classes of one name, the one that the element has something of.
        if (!value->is_trivial()) return value;
        if (!first) first = value;
    }
    return first;
}

}  // namespace TVXML
}  // namespace tvmath
