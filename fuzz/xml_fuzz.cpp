#include <stdlib.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "tvmath/xml_document.h"
#include "tvmath/xml_geometry.h"

// Any bytes as an XML file: nothing crashes or hangs. What is read and can be written is read again as it
// was, also by way of a built element.

namespace fs = std::filesystem;

namespace {

using element_list = std::vector<ctl::ref<kv::XmlElement>>;

fs::path make_folder() {
    std::string name =
        (fs::path(::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") / "tvmath_fuzz_XXXXXX").string();
    if (!::mkdtemp(name.data())) ::abort();
    return name;
}

// Goes with the process.
struct folder {
    fs::path path = make_folder();
    ~folder() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
};

void require(bool holds) {
    if (!holds) ::abort();
}

bool equal(element_list const& a, element_list const& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i]->name != b[i]->name || a[i]->text != b[i]->text || a[i]->attributes != b[i]->attributes ||
            !equal(a[i]->children, b[i]->children)) {
            return false;
        }
    }
    return true;
}

bool equal(kv::XmlElement const& a, kvxml::Element const& b) {
    bool same = a.name == b.name && a.text == b.text && a.attributes.size() == b.attributes.size() &&
                a.children.size() == b.children.size();
    for (std::size_t i = 0; same && i < a.attributes.size(); ++i) {
        same =
            a.attributes[i].name == b.attributes[i].first && a.attributes[i].value == b.attributes[i].second;
    }
    for (std::size_t i = 0; same && i < a.children.size(); ++i) {
        same = b.children[i]->parent == &b && equal(*a.children[i], *b.children[i]);
    }
    return same;
}

// Builds the whole document.
struct builder : kvxml::SAXParseHandler {
    kvxml::Element root;
    void StartElement(kvxml::ISAXReader& reader, wide_string const&, kvxml::attribute_list const&) override {
        reader.BuildElement();
    }
    void EndElement(kvxml::ISAXReader&) override {}
    void EndElement(kvxml::ISAXReader&, kvxml::Element& element) override { root.swap(element); }
};

// What geometry was read is written in the same way again: nothing but numbers of 8 digits is left.
void read_geometry(kv::XmlElement const& element) {
    if (auto const value = TVXML::read_xml(element); !!value) {
        auto const record = TVXML::make_record(*value);
        if (!!record) TVXML::make_xml(*record);
        auto const first = TVXML::make_element(*value);
        auto const again = TVXML::make_element(*TVXML::read_xml(*first));
        require(equal({first}, {again}));
    }
    for (auto const& child : element.children) read_geometry(*child);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static folder const place;
    fs::path const file = place.path / "a.xml";
    wide_string const name = to_wide(file.string());
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<char const*>(data), static_cast<std::streamsize>(size));

    element_list read, again;
    builder built;
    bool const good = kv::read_xml_file(name.c_str(), read);
    require(good == kvxml::read_xml_file(name.c_str(), &built));
    if (!good) return 0;
    require(read.size() == 1 && equal(*read[0], built.root));
    read_geometry(*read[0]);
    if (!kv::write_xml_file(name.c_str(), read)) return 0;  // a letter that not every parser knows
    require(kv::read_xml_file(name.c_str(), again) && equal(read, again));
    return 0;
}
