#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "exit_status.h"

inline namespace tvmath {

/// Where a job stands, and what is wrong with it.
struct job_origin {
    std::string file = {};  ///< empty for the command line, whose options have the names of a job's keys
    std::string reason = {};
    exit_status status = exit_status::done;
};

/// An object in a job. A function that returns false has said in the origin what is wrong, and has left its
/// target as it was; a key that is missing is nothing wrong.
class job_object {
public:
    /// `place` is where it stands in the job, "tools[3] 'bore'"; empty for the job as a whole.
    job_object(nlohmann::json const& value, std::string const& place, job_origin& origin)
        : value_(value), place_(place), origin_(origin) {}

    /// Whether it is an object with no other keys.
    bool has_only(std::vector<std::string_view> const& keys) const;
    bool has(std::string const& key) const { return value_.contains(key); }
    /// Undefined for a key that is missing.
    nlohmann::json const& at(std::string const& key) const { return *value_.find(key); }

    /// Text that is not empty.
    bool read_text(std::string const& key, std::string& text) const;
    /// Printable text of that many bytes at most.
    bool read_label(std::string const& key, std::size_t longest, std::string& text) const;
    /// A number, or where `most` is above 1 a list of so many.
    bool read_numbers(std::string const& key, std::size_t most, std::vector<double>& numbers) const;

    /// False. Says what is wrong with the key, or with the whole object when that is empty.
    bool fail(std::string const& key, std::string const& why) const;
    /// The same of a file that the key names; `why` begins with that file.
    bool fail_file(std::string const& key, std::string const& why) const;

    void set_place(std::string const& place) { place_ = place; }
    job_origin& origin() const { return origin_; }

private:
    nlohmann::json const& value_;
    std::string place_;
    job_origin& origin_;
};

}  // namespace tvmath
