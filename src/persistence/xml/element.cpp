#include <algorithm>

#include "persistence/xml/blank_text.h"
#include "persistence/xml/element_builder.h"

inline namespace tvmath {
namespace kvxml {

namespace {

void adopt_children(Element& parent) noexcept {
    for (std::unique_ptr<Element> const& child : parent.children) {
        if (child) child->parent = &parent;
    }
}

}  // namespace

// From leaf to leaf, along the parents: neither recursion nor memory.
Element::~Element() {
    for (Element* at = this;;) {
        if (!at->children.empty() && at->children.back()) {
            Element* const below = at->children.back().get();
            below->parent = at;
            at = below;
        } else if (!at->children.empty()) {
            at->children.pop_back();
        } else if (at == this) {
            return;
        } else {
            at = at->parent;
            at->children.pop_back();
        }
    }
}

bool Element::find_attribute(wide_string const& attribute, wide_string& value) const {
    auto const found = std::find_if(attributes.begin(), attributes.end(),
                                    [&](auto const& pair) { return pair.first == attribute; });
    if (found == attributes.end()) return false;
    value = found->second;
    return true;
}

bool Element::find_element(wide_string const& element, Element*& child) const {
    auto const found = std::find_if(children.begin(), children.end(),
                                    [&](auto const& one) { return one && one->name == element; });
    if (found == children.end()) return false;
    child = found->get();
    return true;
}

void Element::swap(Element& other) noexcept {
    name.swap(other.name);
    attributes.swap(other.attributes);
    children.swap(other.children);
    text.swap(other.text);
    std::swap(spare, other.spare);
    adopt_children(*this);
    adopt_children(other);
}

void element_builder::start(wide_string const& name, attribute_list const& attributes) {
    auto fresh = std::make_unique<Element>(name);
    fresh->attributes = attributes;
    fresh->parent = open_;
    Element* const element = fresh.get();
    if (open_) {
        open_->children.push_back(std::move(fresh));
    } else {
        root_ = std::move(fresh);
    }
    open_ = element;
}

std::unique_ptr<Element> element_builder::end() {
    if (!open_->children.empty() && is_blank(open_->text)) open_->text.clear();
    open_ = open_->parent;
    return open_ ? nullptr : std::move(root_);
}

}  // namespace kvxml
}  // namespace tvmath
