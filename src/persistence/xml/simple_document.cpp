#include "persistence/xml/blank_text.h"
#include "tvmath/xml_document.h"

inline namespace tvmath {
namespace kv {

namespace {

using element_list = std::vector<ctl::ref<XmlElement>>;

class tree_handler final : public kvxml::SAXParseHandler {
public:
    element_list top;

    void StartElement(kvxml::ISAXReader&, wide_string const& name,
                      kvxml::attribute_list const& attributes) override {
        element_list& list = open_.empty() ? top : open_.back()->children;
        list.push_back(ctl::make_ref<XmlElement>(name));
        XmlElement& fresh = *list.back();
        fresh.attributes.reserve(attributes.size());
        for (auto const& [key, value] : attributes) fresh.attributes.emplace_back(key, value);
        open_.push_back(&fresh);
    }
    void EndElement(kvxml::ISAXReader&) override {
        XmlElement& done = *open_.back();
        if (!done.children.empty() && is_blank(done.text)) done.text.clear();
        open_.pop_back();
    }
    void EndElement(kvxml::ISAXReader&, kvxml::Element&) override {}  // none is asked for
    void AddData(kvxml::ISAXReader&, wide_string const& text) override { open_.back()->text += text; }

private:
    std::vector<XmlElement*> open_;
};

bool start(kvxml::ISAXWriter& writer, XmlElement const& element, kvxml::attribute_list& room) {
    room.clear();
    for (XmlAttribute const& a : element.attributes) room.emplace_back(a.name, a.value);
    if (!writer.StartElement(element.name, room)) return false;
    bool const indentation = !element.children.empty() && is_blank(element.text);
    return indentation || writer.AddData(element.text);
}

// Depth first, without recursion. The writer's limit of depth ends the walk through a tree that contains
// itself.
bool write(kvxml::ISAXWriter& writer, element_list const& top) {
    struct level {
        element_list const* list;
        std::size_t next;
    };
    std::vector<level> open{{&top, 0}};
    kvxml::attribute_list room;
    while (!open.empty()) {
        level& at = open.back();
        if (at.next == at.list->size()) {
            open.pop_back();
            if (!open.empty() && !writer.EndElement()) return false;
            continue;
        }
        XmlElement const* const element = (*at.list)[at.next++].address();
        if (!element) continue;
        if (!start(writer, *element, room)) return false;
        open.push_back({&element->children, 0});
    }
    return true;
}

// Takes a tree apart without recursion and without memory: on the way down, the place of the child in its
// parent holds the way up.
//
// Source: H. Schorr, W. M. Waite, An efficient machine-independent procedure for garbage collection in
// various list structures, Comm. ACM 10 (1967) 501-506.
void dismantle(ctl::ref<XmlElement> at) noexcept {
    ctl::ref<XmlElement> up;
    for (;;) {
        if (at.reference_count() == 1 && !at->children.empty()) {
            ctl::ref<XmlElement> below = std::move(at->children.back());
            at->children.back() = std::move(up);
            up = std::move(at);
            at = std::move(below);
        } else {
            at = {};  // without children, or another's
            if (!up) return;
            at = std::move(up);
            up = std::move(at->children.back());
            at->children.pop_back();
        }
    }
}

}  // namespace

XmlElement& XmlElement::operator=(XmlElement other) noexcept {
    name.swap(other.name);
    text.swap(other.text);
    attributes.swap(other.attributes);
    children.swap(other.children);
    return *this;
}

XmlElement::~XmlElement() {
    for (ctl::ref<XmlElement>& child : children) dismantle(std::move(child));
}

bool read_xml_file(wide_char const* path, std::vector<ctl::ref<XmlElement>>& elements) {
    tree_handler handler;
    if (!kvxml::read_xml_file(path, &handler)) return false;
    elements.swap(handler.top);
    return true;
}

bool write_xml_file(wide_char const* path, std::vector<ctl::ref<XmlElement>> const& elements) {
    ctl::ref<kvxml::ISAXWriter> const writer = kvxml::write_xml_file(path);
    return !!writer && write(*writer, elements) && writer->Close();
}

}  // namespace kv
}  // namespace tvmath
