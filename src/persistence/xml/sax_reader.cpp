#include <utf8.h>

#include <iterator>
#include <string_view>

#include "persistence/xml/element_builder.h"
#include "persistence/xml/xml_parser.h"
#include "services/file_text.h"
#include "tvmath/xml_document.h"

inline namespace tvmath {
namespace kvxml {

namespace {

// UTF-16 of valid UTF-8, into a string whose room is used again.
void widen(std::string_view utf8, wide_string& to) {
    to.resize(utf8.size());
    std::size_t ascii = 0;
    for (; ascii < utf8.size(); ++ascii) {
        auto const byte = static_cast<unsigned char>(utf8[ascii]);
        if (byte >= 0x80) break;
        to[ascii] = byte;
    }
    if (ascii == utf8.size()) return;
    to.resize(ascii);
    utf8::unchecked::utf8to16(utf8.begin() + static_cast<std::ptrdiff_t>(ascii), utf8.end(),
                              std::back_inserter(to));
}

// Behind the prefix. What could not start a name is no local name, and the colon no end of a prefix.
std::string_view local_name(std::string_view name) {
    std::size_t const colon = name.rfind(':');
    if (colon == std::string_view::npos || colon + 1 == name.size()) return name;
    char const first = name[colon + 1];
    bool const starts_no_name = first == '-' || first == '.' || (first >= '0' && first <= '9');
    return starts_no_name ? name : name.substr(colon + 1);
}

// Attributes that keep the room of their strings from one element to the next.
class attribute_room {
public:
    attribute_list const& fill(char const* const* attributes) {
        std::size_t count = 0;
        for (; *attributes; attributes += 2, ++count) {
            if (count == list_.size()) grow();
            widen(attributes[0], list_[count].first);
            widen(attributes[1], list_[count].second);
        }
        while (list_.size() > count) shrink();
        return list_;
    }

private:
    void grow() {
        list_.emplace_back();
        if (spare_.empty()) return;
        list_.back().swap(spare_.back());
        spare_.pop_back();
    }
    void shrink() {
        spare_.push_back(std::move(list_.back()));
        list_.pop_back();
    }

    attribute_list list_, spare_;
};

class sax_reader final : public ISAXReader, public xml_events {
public:
    explicit sax_reader(SAXParseHandler* first) : handlers_{first} {}

    void PushHandler(SAXParseHandler* handler) override {
        if (handler) handlers_.push_back(handler);
    }
    void PopHandler() override {
        if (handlers_.size() > 1) handlers_.pop_back();
    }
    void BuildElement() override { build_asked_ = in_start_; }

    bool start(char const* name, char const* const* attributes) override {
        if (++depth_ > max_depth) return false;
        if (!handlers_.back()) return true;
        widen(local_name(name), text_);
        attribute_list const& list = attributes_.fill(attributes);
        if (builder_.is_building()) {
            builder_.start(text_, list);
            return true;
        }
        in_start_ = true;
        handlers_.back()->StartElement(*this, text_, list);
        in_start_ = false;
        if (std::exchange(build_asked_, false)) builder_.start(text_, list);
        return true;
    }

    bool end() override {
        --depth_;
        if (!handlers_.back()) return true;
        if (!builder_.is_building()) {
            handlers_.back()->EndElement(*this);
        } else if (std::unique_ptr<Element> const built = builder_.end()) {
            handlers_.back()->EndElement(*this, *built);
        }
        return true;
    }

    bool text(std::string_view piece) override {
        if (!handlers_.back()) return true;
        widen(piece, text_);
        if (builder_.is_building()) {
            builder_.add_text(text_);
        } else {
            handlers_.back()->AddData(*this, text_);
        }
        return true;
    }

private:
    std::vector<SAXParseHandler*> handlers_;
    element_builder builder_;
    std::size_t depth_ = 0;
    bool in_start_ = false, build_asked_ = false;
    wide_string text_;
    attribute_room attributes_;
};

}  // namespace

void SAXParseHandler::StartElement(ISAXReader&, wide_string const&, attribute_list const&) {}
void SAXParseHandler::EndElement(ISAXReader&) {}
void SAXParseHandler::EndElement(ISAXReader&, Element&) {}
void SAXParseHandler::AddData(ISAXReader&, wide_string const&) {}
SAXParseHandler::~SAXParseHandler() = default;

bool read_xml_file(wide_char const* path, SAXParseHandler* handler) {
    if (!path) return false;
    open_file file(to_file_path(path), file_use::read);
    if (!file.is_open()) return false;
    sax_reader reader(handler);
    return parse_xml(file, reader);
}

}  // namespace kvxml
}  // namespace tvmath
