#pragma once

#include <concepts>
#include <utility>

#include "tvmath/export.h"
#include "tvmath/persistence.h"
#include "tvmath/ref.h"
#include "tvmath/storage.h"
#include "tvmath/transform.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {

/// Memory of which of several answers of a construction the user chose.
///
/// A construction with several answers fills a list of records, in an order of its own, and returns such an
/// object with the choice at 0. When the features were measured again, the application calls the construction
/// again and lets the new object take over the choice:
///
///     ref<multi_solution> now = point_intersect(a, b, answers);
///     if (now->update_from(saved.address())) now->selected(index);   // the same answer as last time
///
/// Keep the last object whose update succeeded: then an answer that is away for a while is found when it
/// returns.
///
/// Objects are mutable and belong to one thread at a time; a handle ends them at its last release.
class TVMATH_API multi_solution : public idioms::storage {
public:
    ~multi_solution() override;
    void on_zero_reference_count() override;

    /// Makes `index`, counted from 0 in the construction's list, the chosen answer.
    virtual void select(unsigned int index) = 0;
    /// Moves the choice to the answer that corresponds to the one chosen in `previous`. False, with the
    /// choice where it was, for null, for an object of another class, and when the old answer or its
    /// counterpart does not exist.
    virtual bool update_from(multi_solution const* previous) = 0;
    /// Tells the chosen answer.
    virtual void selected(unsigned int& index) const = 0;
    /// Moves the stored answers by `move`, so that answers found in another coordinate system of the part
    /// compare with them; the first argument is not used. Nothing by default.
    virtual void apply_transform(transform unused, transform move);
    /// Text form in brackets, beginning with the key of the class.
    virtual wide_string to_text() const = 0;
    /// Takes over what follows the key in a text form without its outer brackets. False, with the object
    /// unchanged, for text that is none.
    virtual bool from_text(unsigned short const* text) = 0;
};

namespace dynamic {

template <class base>
class abstract_factory;

/// Link of the process-wide list of factories: in it while it lives, the youngest at the head. The list must
/// not be changed while another thread reads it.
template <>
class TVMATH_API abstract_factory<multi_solution> {
public:
    abstract_factory();
    abstract_factory(abstract_factory const&) = delete;
    abstract_factory& operator=(abstract_factory const&) = delete;
    /// A new object, owned by the caller, if `key` is that of the class; otherwise null.
    virtual multi_solution* create(unsigned short const* key) = 0;
    virtual ~abstract_factory();

    /// Head of the list; null when it is empty.
    static abstract_factory* first();
    abstract_factory* next() const { return next_; }

private:
    abstract_factory* next_;
};

template <class kind, class base>
class factory;

/// Makes default objects of one class; a static instance of it makes the class known to
/// `Persistence::to_multi_solution`.
template <class kind>
class factory<kind, multi_solution> : public abstract_factory<multi_solution> {
public:
    explicit factory(wide_string key) : key_(std::move(key)) {}
    multi_solution* create(unsigned short const* key) override {
        return key && key_ == key ? new kind : nullptr;
    }

private:
    wide_string key_;
};

}  // namespace dynamic

namespace Persistence {

/// The object's text form; "()" for an empty handle.
TVMATH_API wide_string to_ascii(idioms::ref<multi_solution> const& solution);

/// The object whose text form, without its outer brackets, `text` is. An empty handle for null, for a key
/// that no factory knows and for text that is none.
TVMATH_API idioms::ref<multi_solution> to_multi_solution(unsigned short const* text);
template <std::same_as<char16_t> unit>
idioms::ref<multi_solution> to_multi_solution(unit const* text) {
    return to_multi_solution(literal_text(text).get());
}

}  // namespace Persistence
}  // namespace tvmath
