#include "tvmath/xml_binding.h"

#include <limits>

#include "tvmath/persistence.h"

inline namespace tvmath {
namespace TVXML {

XmlGeometry::~XmlGeometry() = default;
void XmlGeometry::XmlPreRestore(SaxAttributes const&) {}
void XmlGeometry::XmlPrePassivate(SaxAttributes&) const {}
void XmlGeometry::XmlPostRestore() {}

PersistDataHandler::~PersistDataHandler() = default;
void PersistDataHandler::write_attribute(XmlGeometry const&, SaxAttributes&) const {}
void PersistDataHandler::read_attribute(XmlGeometry&, wide_string const&) const {}
std::size_t PersistDataHandler::child_count(XmlGeometry const&) const {
    return 0;
}
XmlGeometry const* PersistDataHandler::child(XmlGeometry const&, std::size_t) const {
    return nullptr;
}
XmlGeometry* PersistDataHandler::child_to_read(XmlGeometry&) const {
    return nullptr;
}
HandlerTable const* PersistDataHandler::child_handlers() const {
    return nullptr;
}

BindingTables::BindingTables(BindingTables const* base,
                             std::vector<std::shared_ptr<PersistDataHandler>> handlers) {
    if (base) owned = base->owned;
    owned.insert(owned.end(), handlers.begin(), handlers.end());
    for (auto const& handler : owned) {
        all.push_back(handler.get());
        if (handler->is_attribute()) attributes.push_back(handler.get());
        if (handler->is_list()) aggregates.push_back(handler.get());
    }
}

point BindingTables::first_position(XmlGeometry const& owner) const {
    for (PersistDataHandler const* handler : all) {
        if (handler->is_attribute() || handler->is_list()) continue;
        return handler->child(owner, 0)->get_position();
    }
    return point();
}

void xmlstring_make(wide_string& text, double const& value) {
    text = std::isnan(value) ? wide_string() : Persistence::to_ascii(value, 8);
}

void xmlstring_extract(wide_string const& text, double& value) {
    value = Persistence::to_real(text.c_str(), 0.0);
}

void xmlstring_extract(wide_string const& text, long long& value) {
    constexpr long long most = std::numeric_limits<long long>::max();
    std::size_t at = text.find_first_not_of(u" \t\r\n"_w);
    value = 0;
    if (at == wide_npos) return;
    bool const negative = text[at] == '-';
    if (negative || text[at] == '+') ++at;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
        long long const digit = text[at] - '0';
        if (value > (most - digit) / 10) {
            value = 0;
            return;
        }
        value = 10 * value + digit;
    }
    if (negative) value = -value;
}

void xmlstring_extract(wide_string const& text, int& value) {
    long long wide = 0;
    xmlstring_extract(text, wide);
    bool const fits = wide >= std::numeric_limits<int>::min() && wide <= std::numeric_limits<int>::max();
    value = fits ? static_cast<int>(wide) : 0;
}

void xmlstring_extract(wide_string const& text, bool& value) {
    long long wide = 0;
    xmlstring_extract(text, wide);
    value = wide != 0;
}

}  // namespace TVXML
}  // namespace tvmath
