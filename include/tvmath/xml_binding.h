#pragma once

#include <cmath>
#include <concepts>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "tvmath/export.h"
#include "tvmath/point.h"
#include "tvmath/wide_string.h"
#include "tvmath/xml_document.h"
#include "tvmath/xml_tokens.h"

inline namespace tvmath {

/// The tables that bind the members of a value to attributes and elements of XML.
namespace TVXML {

using SaxAttributes = kvxml::attribute_list;

/// A feature by its public parameters, as other programs understand them. Each class has static tables that
/// say how its members are written; see `Xml_Of`.
class TVMATH_API XmlGeometry {
public:
    virtual ~XmlGeometry();
    /// Called before the members are read, with what the element has; does nothing here.
    virtual void XmlPreRestore(SaxAttributes const& attributes);
    /// Called before the members are written; what it adds stands before them. Nothing here.
    virtual void XmlPrePassivate(SaxAttributes& attributes) const;
    /// Called when all members have been read; does nothing here.
    virtual void XmlPostRestore();
    /// The name of the element that such a value is written as.
    virtual XmlToken xml_persistent_token() const = 0;
    /// The point that places the feature; trivial while it is not set.
    virtual point get_position() const = 0;

    /// True while the place is not set, as in a new value and in one of a null feature.
    bool is_trivial() const { return get_position().is_trivial(); }

protected:
    XmlGeometry() = default;
    XmlGeometry(XmlGeometry const&) = default;
    XmlGeometry& operator=(XmlGeometry const&) = default;
};

class PersistDataHandler;
using HandlerTable = std::vector<PersistDataHandler*>;

/// Knows one member of a class, its `owner`. A member is an attribute, or it is children: elements by the
/// handler's name, which are values with a table of their own. Each kind of handler overrides one half.
class TVMATH_API PersistDataHandler {
public:
    explicit PersistDataHandler(XmlToken name) : name_(name) {}
    virtual ~PersistDataHandler();
    XmlToken name() const { return name_; }

    /// Whether the member has a value, which is to be written.
    virtual bool validate(XmlGeometry const& owner) const = 0;

    virtual bool is_attribute() const { return false; }
    virtual void write_attribute(XmlGeometry const& owner, SaxAttributes& attributes) const;
    virtual void read_attribute(XmlGeometry& owner, wide_string const& text) const;

    virtual bool is_list() const { return false; }
    virtual std::size_t child_count(XmlGeometry const& owner) const;
    /// Null beyond the last one.
    virtual XmlGeometry const* child(XmlGeometry const& owner, std::size_t i) const;
    /// The child that the next element of this name is read into; null for an attribute.
    virtual XmlGeometry* child_to_read(XmlGeometry& owner) const;
    /// The table of the children; null for an attribute.
    virtual HandlerTable const* child_handlers() const;

private:
    XmlToken name_;
};

/// The tables of a class: of all members in the order of writing, and of those of them which are attributes
/// and which are lists. They own the handlers, which a derived class shares.
struct TVMATH_API BindingTables {
    HandlerTable all, attributes, aggregates;
    std::vector<std::shared_ptr<PersistDataHandler>> owned;

    /// The members of a base first.
    BindingTables(BindingTables const* base, std::vector<std::shared_ptr<PersistDataHandler>> handlers);
    /// The position of the first member that is one child; trivial without one.
    point first_position(XmlGeometry const& owner) const;
};

/// Text of a number: 8 significant digits, empty for NaN.
TVMATH_API void xmlstring_make(wide_string& text, double const& value);
/// Decimal text; 1 and 0 for a truth value.
template <std::integral T>
void xmlstring_make(wide_string& text, T const& value) {
    text = to_wide(std::to_string(value));
}
/// The number that a text begins with, 0 without one.
TVMATH_API void xmlstring_extract(wide_string const& text, double& value);
/// The decimal number that a text begins with after blanks; 0 without one and for one out of range.
TVMATH_API void xmlstring_extract(wide_string const& text, long long& value);
TVMATH_API void xmlstring_extract(wide_string const& text, int& value);
/// True for a number that is not 0.
TVMATH_API void xmlstring_extract(wide_string const& text, bool& value);

/// Whether a value is worth writing: a number that is not NaN.
inline bool xml_validate(double const& value) {
    return !std::isnan(value);
}
inline bool xml_validate(std::integral auto const&) {
    return true;
}
/// A position that is not trivial; of other values, that all members have values, a list being not empty.
template <std::derived_from<XmlGeometry> T>
bool xml_validate(T const& value) {
    if constexpr (requires { value.get_point(); }) return !value.is_trivial();
    for (PersistDataHandler const* handler : *T::GetXmlBindingHandlers()) {
        if (!handler->validate(value)) return false;
    }
    return true;
}

template <class T>
struct DefaultValidator {
    static bool validate(T const& member) { return xml_validate(member); }
};

template <class T>
struct DefaultPassivator {
    static void passivate(XmlToken name, T const& member, SaxAttributes& attributes) {
        attributes.emplace_back(name.text(), wide_string());
        xmlstring_make(attributes.back().second, member);
    }
};

/// A scalar member, an attribute. It is also read from the text of an element of its name.
template <class owner_class, class member_class = double, class validator = DefaultValidator<member_class>,
          class passivator = DefaultPassivator<member_class>>
class LeafContentHandler final : public PersistDataHandler {
public:
    using member_pointer = member_class owner_class::*;
    LeafContentHandler(XmlToken name, member_pointer member) : PersistDataHandler(name), member_(member) {}

    bool validate(XmlGeometry const& owner) const override { return validator::validate(member_of(owner)); }
    bool is_attribute() const override { return true; }
    void write_attribute(XmlGeometry const& owner, SaxAttributes& attributes) const override {
        if (validate(owner)) passivator::passivate(name(), member_of(owner), attributes);
    }
    void read_attribute(XmlGeometry& owner, wide_string const& text) const override {
        xmlstring_extract(text, static_cast<owner_class&>(owner).*member_);
    }

private:
    member_class const& member_of(XmlGeometry const& owner) const {
        return static_cast<owner_class const&>(owner).*member_;
    }
    member_pointer member_;
};

/// A member that is a value with a table of its own, a child element.
template <class owner_class, class member_class, class validator = DefaultValidator<member_class>>
class BranchContentHandler final : public PersistDataHandler {
public:
    using member_pointer = member_class owner_class::*;
    BranchContentHandler(XmlToken name, member_pointer member) : PersistDataHandler(name), member_(member) {}

    bool validate(XmlGeometry const& owner) const override {
        return validator::validate(static_cast<owner_class const&>(owner).*member_);
    }
    std::size_t child_count(XmlGeometry const& owner) const override { return validate(owner) ? 1 : 0; }
    XmlGeometry const* child(XmlGeometry const& owner, std::size_t i) const override {
        return i == 0 ? &(static_cast<owner_class const&>(owner).*member_) : nullptr;
    }
    XmlGeometry* child_to_read(XmlGeometry& owner) const override {
        return &(static_cast<owner_class&>(owner).*member_);
    }
    HandlerTable const* child_handlers() const override { return member_class::GetXmlBindingHandlers(); }

private:
    member_pointer member_;
};

/// A member that is a list of such values, a child element for each, also for one without a value, so that
/// the others keep their places.
template <class list_class, class owner_class>
class AggregateStlArrayHandler final : public PersistDataHandler {
public:
    using member_pointer = list_class owner_class::*;
    AggregateStlArrayHandler(XmlToken name, member_pointer member)
        : PersistDataHandler(name), member_(member) {}

    bool validate(XmlGeometry const& owner) const override { return child_count(owner) != 0; }
    bool is_list() const override { return true; }
    std::size_t child_count(XmlGeometry const& owner) const override {
        return (static_cast<owner_class const&>(owner).*member_).size();
    }
    XmlGeometry const* child(XmlGeometry const& owner, std::size_t i) const override {
        list_class const& list = static_cast<owner_class const&>(owner).*member_;
        return i < list.size() ? &list[i] : nullptr;
    }
    XmlGeometry* child_to_read(XmlGeometry& owner) const override {
        return &(static_cast<owner_class&>(owner).*member_).emplace_back();
    }
    HandlerTable const* child_handlers() const override {
        return list_class::value_type::GetXmlBindingHandlers();
    }

private:
    member_pointer member_;
};

/// What each class of XML geometry has in the same form. `kind` is the class itself, with the static function
/// `bindings()`; `record` is the record that it stands for, `no_record` where there is none.
struct no_record {};

template <class kind, XmlToken const& element, class record = no_record, class base = XmlGeometry>
struct Xml_Of : base {
    using record_type = record;

    static XmlToken static_xml_persistent_token() { return element; }
    XmlToken xml_persistent_token() const override { return element; }
    point get_position() const override {
        if constexpr (std::same_as<base, XmlGeometry>) {
            return kind::bindings().first_position(*this);
        } else {
            return base::get_position();
        }
    }

    /// Every member in the order of writing; those written as attributes; those that are lists of elements.
    /// The tables are made at the first call and live as long as the program.
    static HandlerTable const* GetXmlBindingHandlers() { return &kind::bindings().all; }
    static HandlerTable const* GetXmlBindingAttributeHandlers() { return &kind::bindings().attributes; }
    static HandlerTable const* GetXmlBindingAggregateHandlers() { return &kind::bindings().aggregates; }

    /// Fills the record from this value. False, with the record as it was, when the value is trivial or gives
    /// no feature for want of a part.
    bool GetDescription(record& to) const {
        if (this->is_trivial()) return false;
        auto const& self = static_cast<kind const&>(*this);
        record fresh;
        if constexpr (requires { fresh.geometry; }) {
            fresh.geometry = static_cast<decltype(fresh.geometry)>(self);
            if (fresh.geometry.is_trivial()) return false;
        } else {
            self.fill(fresh);
        }
        to = fresh;
        return true;
    }
};

}  // namespace TVXML
}  // namespace tvmath
