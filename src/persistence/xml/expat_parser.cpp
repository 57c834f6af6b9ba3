#include <expat.h>

#include <exception>
#include <memory>
#include <new>
#include <type_traits>

#include "persistence/xml/xml_parser.h"

inline namespace tvmath {

namespace {

struct parser_delete {
    void operator()(XML_Parser parser) const { ::XML_ParserFree(parser); }
};
using parser_handle = std::unique_ptr<std::remove_pointer_t<XML_Parser>, parser_delete>;

// One parse. No exception may unwind through the parser, so it waits here until the parser has returned.
class expat_parse {
public:
    explicit expat_parse(xml_events& events) : events_(events), parser_(::XML_ParserCreate(nullptr)) {
        if (!parser_) throw std::bad_alloc();
        ::XML_SetUserData(parser_.get(), this);
        ::XML_SetElementHandler(parser_.get(), on_start, on_end);
        ::XML_SetCharacterDataHandler(parser_.get(), on_text);
        // Entities, default attributes and external files all come by the document type declaration: refused
        // at its first word, there is nothing to expand and nothing to fetch.
        ::XML_SetStartDoctypeDeclHandler(parser_.get(), on_doctype);
    }

    bool run(open_file& file) {
        bool good = true;
        for (bool at_end = false; good && !at_end;) {
            void* const room = ::XML_GetBuffer(parser_.get(), static_cast<int>(chunk_));
            if (!room) return false;  // a tag of more than the parser can hold
            std::size_t const got = file.read(room, chunk_);
            at_end = got < chunk_;
            good = file.failure().empty() && parse(got, at_end);
        }
        if (raised_) std::rethrow_exception(raised_);
        return good && !stopped_;
    }

private:
    static constexpr std::size_t smallest_chunk = 1 << 16, largest_chunk = 1 << 28;

    bool parse(std::size_t bytes, bool at_end) {
        if (::XML_ParseBuffer(parser_.get(), static_cast<int>(bytes), at_end) != XML_STATUS_OK) return false;
        // A tag that a chunk does not end is scanned from its start again with the next one. Chunks that
        // double then keep the time linear in the length of the tag.
        XML_Index const at = ::XML_GetCurrentByteIndex(parser_.get());
        if (at != last_) {
            chunk_ = smallest_chunk;
        } else if (chunk_ < largest_chunk) {
            chunk_ *= 2;
        }
        last_ = at;
        return true;
    }

    static void XMLCALL on_start(void* self, XML_Char const* name, XML_Char const** attributes) {
        tell(self, [&](xml_events& events) { return events.start(name, attributes); });
    }
    static void XMLCALL on_end(void* self, XML_Char const*) {
        tell(self, [](xml_events& events) { return events.end(); });
    }
    static void XMLCALL on_text(void* self, XML_Char const* text, int length) {
        tell(self, [&](xml_events& events) { return events.text({text, static_cast<std::size_t>(length)}); });
    }
    static void XMLCALL on_doctype(void* self, XML_Char const*, XML_Char const*, XML_Char const*, int) {
        tell(self, [](xml_events&) { return false; });
    }

    template <class event>
    static void tell(void* self, event const& one) noexcept {
        auto& parse = *static_cast<expat_parse*>(self);
        if (parse.stopped_) return;  // the parser may have an event left after it was told to stop
        try {
            if (one(parse.events_)) return;
        } catch (...) {
            parse.raised_ = std::current_exception();
        }
        parse.stopped_ = true;
        ::XML_StopParser(parse.parser_.get(), XML_FALSE);
    }

    xml_events& events_;
    parser_handle parser_;
    std::size_t chunk_ = smallest_chunk;
    XML_Index last_ = -1;
    bool stopped_ = false;
    std::exception_ptr raised_;
};

}  // namespace

bool parse_xml(open_file& file, xml_events& events) {
    return expat_parse(events).run(file);
}

}  // namespace tvmath
