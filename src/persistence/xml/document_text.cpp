#include "persistence/xml/document_text.h"

#include <algorithm>

#include "persistence/xml/blank_text.h"
#include "persistence/xml/xml_escape.h"
#include "persistence/xml/xml_names.h"

inline namespace tvmath {
namespace kvxml {

bool document_text::start(wide_string const& name, attribute_list const& attributes) {
    bool const has_place = open_.empty() ? !has_root_ : open_.size() < max_depth;
    if (!has_place || !is_xml_name(name) || !accepts(attributes)) return false;
    finish_tag();
    if (!open_.empty()) {
        begin_line();
        open_.back().has_children = true;
    }
    open_.push_back({names_.size()});
    append_escaped(names_, name, xml_place::text);
    bytes += '<';
    bytes.append(names_, open_.back().name_at);
    for (auto const& [key, value] : attributes) {
        bytes += ' ';
        append_escaped(bytes, key, xml_place::text);
        bytes += "=\"";
        append_escaped(bytes, value, xml_place::attribute);
        bytes += '"';
    }
    has_root_ = in_tag_ = true;
    return true;
}

bool document_text::end() {
    if (open_.empty()) return false;
    level const done = open_.back();
    open_.pop_back();
    if (in_tag_) {
        bytes += "/>";
        in_tag_ = false;
    } else {
        if (done.has_children && !done.has_text) begin_line();
        bytes += "</";
        bytes.append(names_, done.name_at);
        bytes += '>';
    }
    names_.resize(done.name_at);
    if (open_.empty()) bytes += '\n';
    return true;
}

bool document_text::add(wide_string const& text) {
    if (open_.empty()) return is_blank(text);
    if (text.empty()) return true;
    finish_tag();
    open_.back().has_text = true;
    append_escaped(bytes, text, xml_place::text);
    return true;
}

bool document_text::accepts(attribute_list const& attributes) {
    keys_.clear();
    for (auto const& attribute : attributes) keys_.emplace_back(attribute.first);
    std::sort(keys_.begin(), keys_.end());
    return std::adjacent_find(keys_.begin(), keys_.end()) == keys_.end() &&
           std::all_of(keys_.begin(), keys_.end(), is_xml_name);
}

void document_text::finish_tag() {
    if (in_tag_) bytes += '>';
    in_tag_ = false;
}

// Behind an element's text there is no indentation: it would be text too.
void document_text::begin_line() {
    if (!open_.empty() && open_.back().has_text) return;
    bytes += '\n';
    bytes.append(2 * open_.size(), ' ');
}

}  // namespace kvxml
}  // namespace tvmath
