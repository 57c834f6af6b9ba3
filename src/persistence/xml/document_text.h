#pragma once

#include <string>
#include <vector>

#include "tvmath/xml_document.h"

inline namespace tvmath {
namespace kvxml {

/// The text of a document, made in the order of its events. An event is false, and adds nothing, when the
/// text would become one that a parser refuses.
class document_text {
public:
    /// What has been made and not been taken away yet, UTF-8.
    std::string bytes = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

    bool is_complete() const { return has_root_ && open_.empty(); }
    bool start(wide_string const& name, attribute_list const& attributes);
    bool end();
    bool add(wide_string const& text);

private:
    struct level {
        std::size_t name_at;  // in `names_`
        bool has_children = false, has_text = false;
    };

    bool accepts(attribute_list const& attributes);
    void finish_tag();
    void begin_line();

    std::vector<level> open_;
    std::string names_;  // of the open elements, in a row
    std::vector<wide_string_view> keys_;
    bool has_root_ = false, in_tag_ = false;
};

}  // namespace kvxml
}  // namespace tvmath
