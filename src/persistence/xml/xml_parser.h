#pragma once

#include <string_view>

#include "platform/file_access.h"

inline namespace tvmath {

// The one door to an XML parser; nothing else in the library knows which it is.

/// Receives what the parser finds, as valid UTF-8. False ends the parse; so does an exception, which reaches
/// the caller of `parse_xml`.
class xml_events {
public:
    /// The name with its prefix, and names and values of the attributes in turn, with a null behind the last.
    virtual bool start(char const* name, char const* const* attributes) = 0;
    virtual bool end() = 0;
    /// A piece of text, of whole characters.
    virtual bool text(std::string_view piece) = 0;

protected:
    ~xml_events() = default;
};

/// True when the file is one well-formed document without a document type declaration and no event returned
/// false. False without a parser.
bool parse_xml(open_file& file, xml_events& events);

}  // namespace tvmath
