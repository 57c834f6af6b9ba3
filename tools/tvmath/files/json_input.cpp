#include "json_input.h"

#include <algorithm>
#include <set>
#include <sstream>
#include <vector>

#include "point_file.h"

inline namespace tvmath {
namespace {

using json = nlohmann::json;

constexpr std::size_t greatest_depth = 16;

// What a parser's message says beyond its place and the words that it has read, which may be megabytes.
std::string reason_in(std::string message) {
    std::size_t const place = message.find("column ");
    std::size_t from = message.find(": ", place == std::string::npos ? 0 : place);
    if (place == std::string::npos) from = message.find("] ");
    if (from != std::string::npos) message.erase(0, from + 2);
    std::size_t const dash = message.find(" - ");
    if (message.starts_with("syntax error") && dash != std::string::npos) message.erase(0, dash + 3);
    message.erase(std::min(message.find("; last read: '"), message.size()));
    std::string const whole = shown_name(message);
    constexpr std::size_t longest = 120;
    return whole.size() > longest ? whole.substr(0, longest) + "..." : whole;
}

// Looks at the text as it is read, before anything is built from it.
class syntax_check final : public nlohmann::json_sax<json> {
public:
    explicit syntax_check(std::istream& in) : in_(in) {}

    std::string reason;
    std::size_t end = 0;  ///< how many bytes were read when it was found

    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, string_t const&) override { return true; }
    bool string(string_t&) override { return true; }
    bool binary(binary_t&) override { return true; }
    bool start_object(std::size_t) override { return open(); }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(); }
    bool end_array() override { return close(); }
    bool key(string_t& name) override {
        return keys_.back().insert(name).second ||
               fail("the key " + tvmath::quoted(name) + " stands here twice");
    }
    bool parse_error(std::size_t, std::string const&, json::exception const& error) override {
        return fail(reason_in(error.what()));
    }

private:
    bool open() {
        keys_.emplace_back();
        return keys_.size() <= greatest_depth || fail("is nested too deep");
    }
    bool close() {
        keys_.pop_back();
        return true;
    }
    bool fail(std::string const& why) {
        reason = why;
        in_.clear();
        end = static_cast<std::size_t>(in_.tellg());
        return false;
    }

    std::istream& in_;
    std::vector<std::set<std::string>> keys_;  // of the open objects; none of arrays
};

// Of the last of the bytes.
std::string line_and_column(std::string const& text, std::size_t bytes) {
    std::size_t const last = std::min(std::max<std::size_t>(bytes, 1), text.size()) - 1;
    auto const at = text.begin() + static_cast<std::ptrdiff_t>(last);
    std::size_t const newline = last == 0 ? std::string::npos : text.rfind('\n', last - 1);
    return std::to_string(std::count(text.begin(), at, '\n') + 1) + ':' +
           std::to_string(newline == std::string::npos ? last + 1 : last - newline) + ": ";
}

}  // namespace

bool read_json(std::string const& text, json& document, std::string& reason) {
    std::istringstream in(text);
    syntax_check check(in);
    // The parser takes it for the end.
    if (std::size_t const zero = text.find('\0'); zero != std::string::npos) {
        reason = line_and_column(text, zero + 1) + "has a byte 0, as no text has";
        return false;
    }
    if (!json::sax_parse(in, &check)) {
        reason = line_and_column(text, check.end) + check.reason;
        return false;
    }
    document = json::parse(text);
    return true;
}

}  // namespace tvmath
