#include "record_file.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "files/file_input.h"
#include "files/point_file.h"
#include "record_names.h"
#include "record_text.h"
#include "record_xml.h"
#include "report/feature_figures.h"
#include "report/number_text.h"
#include "tvmath/compressed_points.h"

inline namespace tvmath {
namespace {

constexpr std::size_t largest_file = std::size_t{1} << 28;  // five million points with all their digits

struct form_row {
    char const *word, *suffix;
    file_form form;
};

form_row const forms[] = {{"csv", ".csv", file_form::csv},
                          {"csv", ".xyz", file_form::csv},
                          {"text", ".txt", file_form::text},
                          {"hex", ".hex", file_form::hexadecimal},
                          {"xml", ".xml", file_form::xml}};

// What is wrong with a text before it is looked at as one. XML has its own encodings.
bool is_plain_text(std::string& bytes, std::string& reason) {
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.erase(0, 3);
    if (bytes.find('\0') == std::string::npos) return true;
    reason = "zero byte: this is not a text file (text in UTF-16 has to be saved as UTF-8)";
    return false;
}

// How many bytes a list of n points has, as the table of the methods says.
std::size_t compressed_size(unsigned char method, std::size_t n) {
    static constexpr std::size_t step[] = {24, 2, 3, 6};
    return method == 0 ? 1 + 24 * n : 37 + step[method] * (n - 1);
}

bool all_finite(std::vector<point> const& points) {
    return std::all_of(points.begin(), points.end(), [](point const& p) {
        return std::isfinite(p.x()) && std::isfinite(p.y()) && (!p.is_3d() || std::isfinite(p.z()));
    });
}

bool read_hexadecimal(std::string& bytes, std::vector<point>& points, std::string& reason) {
    std::erase_if(bytes, [](char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; });
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        char& c = bytes[i];
        if (c >= 'a' && c <= 'f') c = static_cast<char>(c - 'a' + 'A');  // the library writes capitals only
        if ((c >= '0' && c <= '9') || (c >= 'A' && c <= 'F')) continue;
        reason = "holds other characters than hexadecimal digits";
        return false;
    }
    Compressed_Points compressed;
    Persistence::to_compressed_points(to_wide(bytes).c_str(), compressed);
    unsigned char const method = compressed.decompress(points);
    if (method > 3) {
        reason = "is compressed by method " + std::to_string(method) + ", which is unknown";
    } else if (points.empty()) {
        reason = "holds no points";
    } else if (bytes.size() != 2 * compressed_size(method, points.size())) {
        reason = "breaks off behind point " + std::to_string(points.size());
    } else if (!all_finite(points)) {
        reason = "holds points that are not finite";
    }
    return reason.empty();
}

// Three control points for each piece, and the start.
bool is_bezier(curve const& path) {
    auto const n = path.capacity();
    return n >= 4 && n % 3 == 1 &&
           std::none_of(path.begin(), path.end(), [](point const& p) { return p.is_trivial(); });
}

// Measuring a curve takes time with the square of its order for each point, so that a small file could take
// hours.
bool is_reasonable(nurb const& n) {
    constexpr double most_steps = 1 << 23;
    if (n.order() < 2 || n.order() > 256 || n.order() > n.control_points()) return false;
    if (double(n.order()) * n.order() * n.control_points() > most_steps) return false;
    for (unsigned int i = 0; i + 1 < n.knots(); ++i) {
        if (n.get_knot(i) > n.get_knot(i + 1)) return false;
    }
    for (unsigned int i = 0; i < n.control_points(); ++i) {
        if (n.get_control_point(i).w == 0) return false;
    }
    return true;
}

// What would make answers without meaning of a record whose numbers are in order one by one.
bool is_sound(Geometry_Description const& record, std::string& reason) {
    auto const* const open = dynamic_cast<OpenSpline_Description const*>(&record);
    auto const* const closed = dynamic_cast<ClosedSpline_Description const*>(&record);
    auto const* const curved = dynamic_cast<Nurb_Description const*>(&record);
    if ((open && !is_bezier(open->path)) || (closed && !is_bezier(closed->path))) {
        reason = "a spline has 3 n + 1 control points, 4 at least";
        return false;
    }
    if (curved && !is_reasonable(curved->geometry)) {
        reason =
            "a nurb has an order of 2 to 256, as many points at least, but not too many for its order, "
            "ascending knots, and weights other than 0";
        return false;
    }
    for (figure const& f : figures_of(record)) {
        if (std::all_of(f.values.begin(), f.values.end(), [](double x) { return std::isfinite(x); }))
            continue;
        reason = "the " + f.label + " of this " + record_name(record.type()) + " is not finite";
        return false;
    }
    return true;
}

// Makes the record one of the kind that is expected, if it can be.
bool take_as(unsigned long long type, std::shared_ptr<Geometry_Description>& record, std::string& reason) {
    if (type == 0 || type == record->type()) return true;
    auto const wanted = new_record(type);
    std::vector<point>*const from = points_in(*record), *const to = points_in(*wanted);
    if (!from || !to) {
        reason = "holds " + with_article(from ? "list of points" : record_name(record->type())) + ", not " +
                 with_article(record_name(type));
        return false;
    }
    to->swap(*from);
    record = wanted;
    return true;
}

// The points of a record that holds nothing else.
bool list_points(Geometry_Description const& record, std::vector<point>& points, std::string& reason) {
    if (auto const* const one = dynamic_cast<Point_Description const*>(&record)) {
        points = {one->position};
        return true;
    }
    if (auto const* const list = points_in(record)) {
        points = *list;
        return true;
    }
    reason = with_article(record_name(record.type())) +
             " is no list of points; CSV and compressed points hold nothing else";
    return false;
}

std::string csv_of(std::vector<point> const& points) {
    bool const in_space = points.front().is_3d();
    std::string text = in_space ? "x,y,z\n" : "x,y\n";
    for (point const& p : points) {
        text += number_text(p.x()) + ',' + number_text(p.y());
        if (in_space) text += ',' + number_text(p.z());
        text += '\n';
    }
    return text;
}

bool compress(std::vector<point> points, unsigned char method, std::string& bytes, std::string& reason) {
    for (point& p : points) p.promote3d();
    Compressed_Points compressed;
    compressed.compress(method, points);
    std::vector<point> again;
    compressed.decompress(again);
    // Steps are held as floats, which end at 3e38.
    if (again.size() != points.size() || !all_finite(again)) {
        reason = "method " + std::to_string(method) + " cannot hold steps as long as these; method 0 can";
        return false;
    }
    bytes = to_utf8(Persistence::to_ascii(compressed)) + '\n';
    return true;
}

exit_status read_other(std::string const& file, file_form form, unsigned long long type,
                       std::shared_ptr<Geometry_Description>& record, std::string& reason) {
    std::string bytes;
    if (!read_all(file, largest_file, "is larger than 256 MiB", bytes, reason))
        return exit_status::unreadable_input;
    if (form == file_form::xml) return read_record_xml(bytes, record, reason);
    if (!is_plain_text(bytes, reason)) return exit_status::unreadable_input;
    if (form == file_form::text) {
        return read_record_text(std::move(bytes), type, record, reason) ? exit_status::done
                                                                        : exit_status::unreadable_input;
    }
    auto const cloud = std::make_shared<PointCloud_Description>();
    if (!read_hexadecimal(bytes, cloud->points, reason)) return exit_status::unreadable_input;
    record = cloud;
    return exit_status::done;
}

}  // namespace

bool find_form(std::string const& word, std::string const& file, file_form& form, std::string& reason) {
    std::string const suffix = std::filesystem::path(file).extension().string();
    for (form_row const& row : forms) {
        if (word.empty() ? suffix == row.suffix : word == row.word) {
            form = row.form;
            return true;
        }
    }
    reason = word.empty() ? shown_name(file) +
                                ": the suffix .csv, .xyz, .txt, .hex or .xml, or an option, must "
                                "say the form"
                          : "there is no form '" + shown_name(word) + "'; they are csv, text, hex and xml";
    return false;
}

exit_status read_record(std::string const& file, file_form form, unsigned long long type,
                        std::shared_ptr<Geometry_Description>& record, std::string& reason) {
    std::shared_ptr<Geometry_Description> fresh;
    if (form == file_form::csv) {
        auto const cloud = std::make_shared<PointCloud_Description>();
        read_error error;
        if (!read_point_file(file, false, cloud->points, error)) {
            reason = error_text(file, error);
            return exit_status::unreadable_input;
        }
        fresh = cloud;
    } else {
        std::string why;
        exit_status const status = read_other(file, form, type, fresh, why);
        if (status != exit_status::done) {
            reason = shown_name(file) + ": " + why;
            return status;
        }
    }
    std::string why;
    if (!take_as(type, fresh, why) || !is_sound(*fresh, why)) {
        reason = shown_name(file) + ": " + why;
        return exit_status::unreadable_input;
    }
    record = fresh;
    return exit_status::done;
}

exit_status record_bytes(Geometry_Description const& record, file_form form, write_options const& options,
                         std::string& bytes, std::string& reason) {
    if (form == file_form::xml) return record_xml(record, options.precision, bytes, reason);
    if (form == file_form::text) {
        return record_text(record, options.precision, options.bare, bytes, reason) ? exit_status::done
                                                                                   : exit_status::no_answer;
    }
    std::vector<point> points;
    if (!list_points(record, points, reason)) return exit_status::no_answer;
    if (form == file_form::hexadecimal) {
        return compress(std::move(points), options.method, bytes, reason) ? exit_status::done
                                                                          : exit_status::no_answer;
    }
    bytes = csv_of(points);
    return exit_status::done;
}

}  // namespace tvmath
