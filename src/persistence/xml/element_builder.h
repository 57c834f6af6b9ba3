#pragma once

#include <memory>

#include "tvmath/xml_document.h"

inline namespace tvmath {
namespace kvxml {

/// Makes a tree of the events from the start of an element to its end.
class element_builder {
public:
    bool is_building() const { return open_ != nullptr; }
    void start(wide_string const& name, attribute_list const& attributes);
    void add_text(wide_string const& text) { open_->text += text; }
    /// The whole tree at the end of its root, null before.
    std::unique_ptr<Element> end();

private:
    std::unique_ptr<Element> root_;
    Element* open_ = nullptr;
};

}  // namespace kvxml
}  // namespace tvmath
