#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "tvmath/ctl_ref.h"
#include "tvmath/export.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {

/// XML documents as a stream of events, and a tree built from them on request.
///
/// Files are hostile until read. A document type declaration ends the reading with false, so that there are
/// no entities to expand and nothing outside the file is asked for; so does an element deeper than
/// `max_depth`. Time and memory grow with the size of the file alone. Different threads may read and write
/// different files at the same time.
///
/// Names of elements are local: a prefix before a colon is cut off on reading. Attributes keep their names as
/// written, those of a namespace's declaration among them.
namespace kvxml {

/// Names and values, in the order of the document.
using attribute_list = std::vector<std::pair<wide_string, wide_string>>;

/// Depth of the deepest element, the root having 1, that is read or written. Far beyond honest documents, and
/// little enough for a caller that walks a tree by recursion.
inline constexpr std::size_t max_depth = 1000;

/// A node of a built tree. It owns its children; a tree of any depth dies without recursion.
struct TVMATH_API Element {
    wide_string name;
    attribute_list attributes;
    std::vector<std::unique_ptr<Element>> children;
    /// The texts of this element one after the other, without those of its children. Blank text around
    /// children is indentation and left out.
    wide_string text;
    Element* parent = nullptr;  ///< Null at the root.
    std::uintptr_t spare = 0;

    Element() = default;
    explicit Element(wide_string element_name) : name(std::move(element_name)) {}
    Element(Element const&) = delete;
    Element& operator=(Element const&) = delete;
    ~Element();

    /// True and the value of the first attribute of that name; false, with `value` as it was, without one.
    bool find_attribute(wide_string const& attribute, wide_string& value) const;
    /// True and the first child of that name, still owned by this element; false, with `child` as it was,
    /// without one.
    bool find_element(wide_string const& element, Element*& child) const;
    /// Exchanges everything but the places in the tree: each keeps its parent, and the children follow their
    /// new owner.
    void swap(Element& other) noexcept;
};

class SAXParseHandler;

/// What a handler can ask of the reader that calls it.
class TVMATH_API ISAXReader {
public:
    /// Lets `handler` have the events from the next one on, until it is popped. A nested handler that is
    /// pushed at the start of an element pops itself at the end of that element, which it receives as its
    /// last event. Not owned; null does nothing.
    virtual void PushHandler(SAXParseHandler* handler) = 0;
    /// Gives the events back to the handler before. The first handler stays.
    virtual void PopHandler() = 0;
    /// Inside `StartElement` alone: asks for the element that starts to be built. Until its end no handler
    /// has events; then the handler that is current has `EndElement` with the element, instead of the one
    /// without.
    virtual void BuildElement() = 0;

protected:
    ~ISAXReader() = default;
};

/// Receives the events of a document, in its order. What it raises ends the reading and reaches the caller of
/// `read_xml_file`. Texts are valid during the call alone.
class TVMATH_API SAXParseHandler {
public:
    virtual void StartElement(ISAXReader& reader, wide_string const& name, attribute_list const& attributes);
    virtual void EndElement(ISAXReader& reader);
    /// The end of an element that was built on request; what the handler needs of it, it takes by `swap`.
    virtual void EndElement(ISAXReader& reader, Element& element);
    /// A piece of text, blank text between elements too. A text may come in several pieces, in order; no
    /// character is split between two.
    virtual void AddData(ISAXReader& reader, wide_string const& text);
    virtual ~SAXParseHandler();
};

/// Writes a document: UTF-8 without a byte order mark, indented by two blanks.
///
/// Whatever is written reads back. Characters that XML cannot hold (most control characters, U+FFFE and
/// U+FFFF, lone surrogates) become U+FFFD. What cannot be written so is refused: the operation returns false,
/// the rest of the document is refused too, and the file is left as it was before.
///
/// Once an element has text, what follows inside it is not indented, because blanks would add to its text;
/// write the text before the children.
class TVMATH_API ISAXWriter {
public:
    /// Closes the document.
    virtual ~ISAXWriter() = default;
    /// Refused: a second root, an element deeper than `max_depth`, two attributes of one name, and a name
    /// that is none in XML. Names start with a letter, `_` or `:` and go on with these, digits, `-` and `.`;
    /// letters are those that every XML parser knows of the Latin, Greek, Cyrillic, Hebrew and Arabic
    /// alphabets, of kana, ideographs and Hangul.
    virtual bool StartElement(wide_string const& name, attribute_list const& attributes) = 0;
    /// Refused when no element is open.
    virtual bool EndElement() = 0;
    /// Refused outside the root, unless blank.
    virtual bool AddData(wide_string const& text) = 0;
    /// Ends the document and puts the file in its place. True when a complete document is on the disk; false
    /// when something was refused or cannot be stored, when an element is still open or there is none. The
    /// answer stays the same when it is called again. Afterwards every operation is refused.
    virtual bool Close() = 0;
};

/// Reads a file from begin to end and tells `handler`, which may be null, what is in it. True when the whole
/// file is one well-formed document within the limits above. False for anything else, after the events that
/// came before the fault; an unreadable file gives none. The encodings are UTF-8, UTF-16, ISO-8859-1 and
/// US-ASCII. Always false in a library that was built without an XML parser.
TVMATH_API bool read_xml_file(wide_char const* path, SAXParseHandler* handler);
inline bool read_xml_file(char16_t const* path, SAXParseHandler* handler) {
    return path && read_xml_file(as_wide(path).c_str(), handler);
}

/// A writer of a new document, or the empty handle when the file cannot be written. The document grows in a
/// file beside it, whose name ends with ".writing", and takes the place of `path` when it is closed: whatever
/// happens, there is a complete file, the old one or the new one. Of two writers of one file, the last to
/// close wins.
TVMATH_API ctl::ref<ISAXWriter> write_xml_file(wide_char const* path);
inline ctl::ref<ISAXWriter> write_xml_file(char16_t const* path) {
    return path ? write_xml_file(as_wide(path).c_str()) : ctl::ref<ISAXWriter>();
}

}  // namespace kvxml

/// XML documents in the simplest form: a whole file as a tree of elements.
namespace kv {

struct TVMATH_API XmlAttribute {
    wide_string name;
    wide_string value;

    XmlAttribute() = default;
    explicit XmlAttribute(wide_string attribute_name) : name(std::move(attribute_name)) {}
    XmlAttribute(wide_string attribute_name, wide_string attribute_value)
        : name(std::move(attribute_name)), value(std::move(attribute_value)) {}
    bool operator==(XmlAttribute const&) const = default;
};

/// An element with its attributes and children. A copy shares the children. A tree of any depth dies without
/// recursion; one that contains itself never does.
struct TVMATH_API XmlElement {
    wide_string name;
    wide_string text;  ///< As in `kvxml::Element`.
    std::vector<XmlAttribute> attributes;
    std::vector<ctl::ref<XmlElement>> children;

    XmlElement() = default;
    explicit XmlElement(wide_string element_name) : name(std::move(element_name)) {}
    XmlElement(wide_string element_name, wide_string element_text)
        : name(std::move(element_name)), text(std::move(element_text)) {}
    XmlElement(XmlElement const&) = default;
    XmlElement(XmlElement&&) = default;
    // By value: what is assigned may be a child of this element, and would die with the others.
    XmlElement& operator=(XmlElement other) noexcept;
    ~XmlElement();
};

/// Puts the elements at the top of the file, which is one, in the place of what `elements` holds. False, with
/// `elements` as it was, where `kvxml::read_xml_file` gives false.
TVMATH_API bool read_xml_file(wide_char const* path, std::vector<ctl::ref<XmlElement>>& elements);
inline bool read_xml_file(char16_t const* path, std::vector<ctl::ref<XmlElement>>& elements) {
    return path && read_xml_file(as_wide(path).c_str(), elements);
}

/// Writes each element, its text before its children, and passes over empty handles. Blank text beside
/// children is left out, as on reading, so that a tree which has been read is written and read again
/// unchanged. False, with the file as it was before, where `kvxml::ISAXWriter` refuses, which it also does
/// for a list that does not hold exactly one element.
TVMATH_API bool write_xml_file(wide_char const* path, std::vector<ctl::ref<XmlElement>> const& elements);
inline bool write_xml_file(char16_t const* path, std::vector<ctl::ref<XmlElement>> const& elements) {
    return path && write_xml_file(as_wide(path).c_str(), elements);
}

}  // namespace kv
}  // namespace tvmath
