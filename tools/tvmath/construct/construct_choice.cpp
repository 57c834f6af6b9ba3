#include "construct/construct_choice.h"

#include <charconv>
#include <fstream>
#include <iterator>

#include "files/point_file.h"
#include "record/record_text.h"

inline namespace tvmath {
namespace {

constexpr std::size_t largest_choice = std::size_t{1} << 24;  // bytes; that of a path has its points

bool read_text(std::string const& file, std::string& text, std::string& reason) {
    std::ifstream in;
    read_error error;
    if (!open_input(file, in, error)) {
        reason = error_text(file, error);
        return false;
    }
    std::string block(std::size_t{1} << 12, '\0');
    while (text.size() <= largest_choice &&
           (in.read(block.data(), static_cast<std::streamsize>(block.size())), in.gcount() > 0)) {
        text.append(block, 0, static_cast<std::size_t>(in.gcount()));
    }
    if (text.size() > largest_choice) reason = shown_name(file) + ": is larger than 16 MiB";
    return reason.empty();
}

// Without blanks around it, and without the brackets.
std::string inside(std::string const& text) {
    char const* const blanks = " \t\r\n";
    std::size_t const first = text.find_first_not_of(blanks);
    if (first == std::string::npos) return {};
    std::string trimmed = text.substr(first, text.find_last_not_of(blanks) + 1 - first);
    if (trimmed.front() != '(' || trimmed.back() != ')') return trimmed;
    return trimmed.substr(1, trimmed.size() - 2);
}

std::string key_of(std::string const& text) {
    std::string const words = inside(text);
    return words.substr(0, words.find(' '));
}

bool is_text(std::string const& text) {
    return text.find('\0') == std::string::npos;
}

exit_status choose_number(std::string const& number, construct_result& result, std::string& reason) {
    std::size_t place = 0;
    auto const [end, error] = std::from_chars(number.data(), number.data() + number.size(), place);
    if (error != std::errc() || end != number.data() + number.size() || place == 0) {
        reason = "--choose: '" + shown_name(number) + "' is not the number of an answer, which count from 1";
        return exit_status::wrong_usage;
    }
    if (place > result.answers.size()) {
        std::size_t const n = result.answers.size();
        reason = "--choose " + number + ": there " +
                 (n == 1 ? "is one answer" : "are " + std::to_string(n) + " answers");
        return exit_status::no_answer;
    }
    result.chosen = place - 1;
    return exit_status::done;
}

exit_status follow(old_choice const& old, multi_solution& memory, construct_result& result,
                   std::string& reason) {
    auto const before = Persistence::to_multi_solution(to_wide(inside(old.text)).c_str());
    std::string const key = key_of(to_utf8(memory.to_text()));
    if (!before || key_of(old.text) != key) {
        reason = old.file + ": " +
                 (!before ? "is not the memory of a choice" : "is the memory of another construction") +
                 "; that of this one begins with " + key;
        return exit_status::unreadable_input;
    }
    unsigned int place = 0;
    bool const found = memory.update_from(before.address());
    memory.selected(place);
    if (!found || place >= result.answers.size()) {
        reason = old.file + ": the answer chosen there has no counterpart here";
        return exit_status::no_answer;
    }
    result.chosen = place;
    return exit_status::done;
}

}  // namespace

exit_status read_old_choice(std::string const& file, operation what, old_choice& old, std::string& reason) {
    old.file = shown_name(file);
    if (!read_text(file, old.text, reason)) return exit_status::unreadable_input;
    if (what != operation::angle) {
        if (!is_text(old.text)) reason = old.file + ": is not the memory of a choice";
        return is_text(old.text) ? exit_status::done : exit_status::unreadable_input;
    }
    std::shared_ptr<Geometry_Description> record;
    if (!is_text(old.text)) reason = "is not the text of an angle";
    if (!is_text(old.text) || !read_record_text(old.text, Angle_Description::type_value, record, reason)) {
        reason = old.file + ": " + reason;
        return exit_status::unreadable_input;
    }
    old.angle = static_cast<Angle_Description const&>(*record);
    return exit_status::done;
}

exit_status choose(std::string const& number, old_choice const* old,
                   idioms::ref<multi_solution> const& memory, construct_result& result, std::string& reason) {
    exit_status status = exit_status::done;
    if (!number.empty()) status = choose_number(number, result, reason);
    // The angle was found by its reference, which made it the first.
    if (old && !!memory) status = follow(*old, *memory, result, reason);
    if (status != exit_status::done) return status;
    if (!!memory) {
        memory->select(static_cast<unsigned int>(result.chosen));
        result.memory = to_utf8(memory->to_text());
    } else if (result.row->what == operation::angle &&
               record_text(*result.choice().record, 15, false, result.memory, reason)) {
        result.memory.pop_back();  // the end of its line
    }
    return exit_status::done;
}

}  // namespace tvmath
