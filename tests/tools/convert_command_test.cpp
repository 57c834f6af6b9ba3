#include "record/convert_command.h"

#include <gtest/gtest.h>

#include <sstream>

#include "record/record_file.h"
#include "record/record_names.h"
#include "record/record_parameters.h"
#include "record/record_xml.h"
#include "record_files.h"
#include "report/feature_figures.h"
#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

std::vector<std::string> words(std::string const& text) {
    std::istringstream in(text);
    return {std::istream_iterator<std::string>(in), {}};
}

exit_status try_to_convert(std::string const& input, std::string const& output, std::string const& kind,
                           std::string& printed, std::string& message) {
    std::ostringstream out, err;
    exit_status const status = run_convert({input, output, "", "", kind, "", "", false}, out, err);
    printed = out.str();
    message = err.str();
    return status;
}

void convert(std::string const& input, std::string const& output, std::string const& kind = "") {
    std::string printed, message;
    ASSERT_EQ(try_to_convert(input, output, kind, printed, message), exit_status::done) << message;
}

std::shared_ptr<Geometry_Description> read(std::string const& file, file_form form) {
    std::shared_ptr<Geometry_Description> record;
    std::string reason;
    EXPECT_EQ(read_record(file, form, 0, record, reason), exit_status::done) << reason;
    return record ? record : new_record(Point_Description::type_value);
}

// A figure of 2D data has no z; it counts as 0.
double at(figure const& f, std::size_t i) {
    return i < f.values.size() ? f.values[i] : 0;
}

void expect_same_figures(Geometry_Description const& made, Geometry_Description const& kept) {
    std::vector<figure> const expected = figures_of(made), found = figures_of(kept);
    ASSERT_EQ(made.type(), kept.type());
    ASSERT_EQ(expected.size(), found.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (expected[i].columns > 1) continue;
        for (std::size_t n = 0; n < found[i].values.size(); ++n) {
            // 8 digits of numbers below 100, some of which are computed from several.
            EXPECT_NEAR(at(found[i], n), at(expected[i], n), 1e-5) << expected[i].label;
        }
    }
}

struct kind_case {
    char const *kind, *parameters;
    bool has_xml;
};

kind_case const kinds[] = {
    {"point", "3 4.5", true},
    {"segment", "1 1 5 3", true},
    {"circle", "2 10 -5", true},
    {"arc", "2 20deg 100deg 1 1", true},
    {"ellipse", "4 1.5 30deg 3 2", true},
    {"rectangle", "4 2 25deg 1 1", true},
    {"slot", "3 0.8 -20deg 1 1", true},
    {"gap", "3 1.5 15deg 1 1", true},
    {"oring", "2 2.5 1 1", true},
    {"angle", "1 10deg 70deg 3 4", true},
    {"open-spline", "0 0 1 2 3 2 4 0 5 -2 6 -1 7 1", true},
    {"closed-spline", "0 0 2 3 4 3 6 0 5 -3 1 -3 0 0", true},
    {"nurb", "4 5 0 0 0 0 1 2 2 2 2 0 0 1 1 3 0.5 3 2 1 4 0 2 5 1 1", false},
    {"plane", "1 2 3 0.3 0.4 1", true},
    {"sphere", "2 1 1 7", true},
    {"cylinder", "1 4 0 2 0 1 0.4 0.8", true},
    {"cone", "0 0 0 2 1 3 2 0.7", true},
    {"transform", "2 1 30deg", true},
    {"composite", "2 1 -15deg", true},
};

TEST(ConvertCommand, KeepsEveryKindOfRecord) {
    record_folder const files;
    for (kind_case const& c : kinds) {
        SCOPED_TRACE(c.kind);
        std::unique_ptr<Geometry_Description> made;
        std::string reason, bytes;
        ASSERT_TRUE(make_record(c.kind, words(c.parameters), made, reason)) << reason;
        ASSERT_EQ(record_bytes(*made, file_form::text, {}, bytes, reason), exit_status::done) << reason;
        std::string const text = files.write("a.txt", bytes);
        if (made->type() == Transform_Description::type_value ||
            made->type() == Composite_Description::type_value) {
            // A flat placement becomes one in space, which has other figures: yaw is the angle.
            auto const kept = read(text, file_form::text);
            EXPECT_NEAR(figures_of(*kept)[1].values[0], figures_of(*made)[1].values[0], 1e-7);
        } else {
            expect_same_figures(*made, *read(text, file_form::text));
        }
        if (!reads_xml()) continue;
        if (!c.has_xml) {
            std::string printed, message;
            EXPECT_EQ(try_to_convert(text, files.path("none.xml"), "", printed, message),
                      exit_status::no_answer);
            expect_one_line(message);
            continue;
        }
        convert(text, files.path("a.xml"));
        convert(files.path("a.xml"), files.path("b.txt"));
        expect_same_figures(*read(text, file_form::text), *read(files.path("b.txt"), file_form::text));
    }
    EXPECT_EQ(files.files(), reads_xml() ? 3 : 1) << "nothing but a.txt, a.xml and b.txt is left";
}

// Coordinates of at most 15 digits come back to the last bit through every form.
TEST(ConvertCommand, KeepsListsOfPointsExactly) {
    record_folder const files;
    seeded_random random(20260101);
    for (bool const in_space : {false, true}) {
        std::ostringstream csv;
        csv.precision(12);
        csv << (in_space ? "x,y,z\n" : "x,y\n");
        for (int i = 0; i < 200; ++i) {
            csv << random.uniform(-1e3, 1e3) << ',' << random.uniform(-1e-3, 1e-3);
            if (in_space) csv << ',' << random.uniform(1e5, 1e6);
            csv << '\n';
        }
        auto const given = read(files.write("a.csv", csv.str()), file_form::csv);
        convert(files.path("a.csv"), files.path("a.txt"));
        std::string last = files.path("a.txt");
        if (reads_xml()) convert(last, files.path("a.xml")), last = files.path("a.xml");
        convert(last, files.path("b.csv"));
        EXPECT_TRUE(*points_in(*read(files.path("b.csv"), file_form::csv)) == *points_in(*given));
        convert(last, files.path("a.hex"));
        convert(files.path("a.hex"), files.path("c.csv"));
        std::vector<point> lifted = *points_in(*given);
        for (point& p : lifted) p.promote3d();
        EXPECT_TRUE(*points_in(*read(files.path("c.csv"), file_form::csv)) == lifted);
    }
}

// Files written by hand.
TEST(ConvertCommand, ReadsWhatOthersWrite) {
    struct {
        char const *name, *kind, *bytes, *csv;
    } const cases[] = {
        {"a.txt", "", "((1 2) (3 4.5))\n", "x,y\n1.0,2.0\n3.0,4.5\n"},
        {"inside.txt", "", "\xEF\xBB\xBF(1 2)\r\n\t(3 4.5)", "x,y\n1.0,2.0\n3.0,4.5\n"},
        {"one.txt", "", "(1 2 -3e0)", "x,y,z\n1.0,2.0,-3.0\n"},
        {"point.txt", "", "point (1 2 3)", "x,y,z\n1.0,2.0,3.0\n"},
        {"bare.txt", "point", "1 2 3", "x,y,z\n1.0,2.0,3.0\n"},
        {"cloud.txt", "", "point-cloud ((1 2) (3 4))", "x,y\n1.0,2.0\n3.0,4.0\n"},
        {"a.hex", "", "00000000000000F03f0000000000000040\n0000000000000CC0", "x,y,z\n1.0,2.0,-3.5\n"},
        {"a.xml", "", "<Points><Point XAxis='1' YAxis='2'/>\n<Point YAxis='4.5' XAxis='3' id='x'/></Points>",
         "x,y\n1.0,2.0\n3.0,4.5\n"},
        {"point.xml", "point", "<?xml version='1.0'?><Point XAxis='1' YAxis='2' ZAxis='3'/>",
         "x,y,z\n1.0,2.0,3.0\n"},
    };
    record_folder const files;
    for (auto const& c : cases) {
        if (!reads_xml() && std::string(c.name).ends_with(".xml")) continue;
        SCOPED_TRACE(c.name);
        convert(files.write(c.name, c.bytes), files.path("out.csv"), c.kind);
        EXPECT_EQ(files.read("out.csv"), c.csv);
    }
}

TEST(ConvertCommand, RefusesWhatWouldBeLostAndKeepsTheOldFile) {
    std::string const circle = "circle ((0 2 0 0) (0 0 2 0) (0 0 0 1)  (0 0.5 0 0) (0 0 0.5 0) (0 0 0 1))";
    struct {
        char const* name;
        std::string bytes, kind, output;
        exit_status status;
    } const cases[] = {
        {"empty.txt", "", "", "old.csv", exit_status::unreadable_input},
        {"word.txt", "((1 2) (3 x))", "", "old.csv", exit_status::unreadable_input},
        {"infinite.txt", "((1 2) (3 1.#INF))", "", "old.csv", exit_status::unreadable_input},
        {"huge.txt", "((1 2) (3 1e999))", "", "old.csv", exit_status::unreadable_input},
        {"broken.txt", "((1 2) (3 4)", "", "old.csv", exit_status::unreadable_input},
        {"crossed.txt", "((1 2} (3 4))", "", "old.csv", exit_status::unreadable_input},
        {"fourth.txt", "((1 2 3 4))", "", "old.csv", exit_status::unreadable_input},
        {"mixed.txt", "((1 2) (1 2 3))", "", "old.csv", exit_status::unreadable_input},
        {"zero.txt", std::string("((1 2)\0)", 8), "", "old.csv", exit_status::unreadable_input},
        {"deep.txt", std::string(1000000, '('), "", "old.csv", exit_status::unreadable_input},
        {"short.txt", circle.substr(0, circle.size() - 9) + ")", "", "old.xml",
         exit_status::unreadable_input},
        {"row.txt", circle.substr(0, 7) + "((0 2 0 0) (0 0 2 0 7) (1 0 0 1) (0 0.5 0 0) (0 0 0.5 0) (0 0 1))",
         "", "old.xml", exit_status::unreadable_input},
        {"no_bezier.txt", "open-spline (Bez ((0 0) (1 1) (2 2)))", "", "old.xml",
         exit_status::unreadable_input},
        {"knots.txt", "nurb ((0 0) (2 2 0 0 0 1 1 1 0 1 0 1 0 1))", "", "old.txt",
         exit_status::unreadable_input},
        {"other.txt", circle, "slot", "old.xml", exit_status::unreadable_input},
        {"odd.hex", "0", "", "old.csv", exit_status::unreadable_input},
        {"cut.hex", "00000000000000F03F", "", "old.csv", exit_status::unreadable_input},
        {"letter.hex", "00G0", "", "old.csv", exit_status::unreadable_input},
        {"method.hex", "05" + std::string(72, '0'), "", "old.csv", exit_status::unreadable_input},
        {"nan.hex", "00000000000000F87F0000000000000040000000000000F03F", "", "old.csv",
         exit_status::unreadable_input},
        {"cut.xml", "<Circle radius='1'><Center XAxis='1' YAxis='1'/>", "", "old.txt",
         exit_status::unreadable_input},
        {"entity.xml", "<!DOCTYPE a [<!ENTITY b 'c'>]><Circle radius='1'/>", "", "old.txt",
         exit_status::unreadable_input},
        {"word.xml", "<Circle radius='big'><Center XAxis='1' YAxis='1'/></Circle>", "", "old.txt",
         exit_status::unreadable_input},
        {"part.xml", "<Circle radius='1'/>", "", "old.txt", exit_status::unreadable_input},
        {"tag.xml", "<Bottle radius='1'/>", "", "old.txt", exit_status::unreadable_input},
        {"half.xml", "<Points><Point XAxis='1'/></Points>", "", "old.csv", exit_status::unreadable_input},
        {"line.xml", "<Points><Line/></Points>", "", "old.csv", exit_status::unreadable_input},
        {"circle.txt", circle, "", "old.csv", exit_status::no_answer},
        {"circle.txt", circle, "", "old.hex", exit_status::no_answer},
        {"number.txt", "number 5", "", "old.xml", exit_status::no_answer},
        {"a.doc", "1,2", "", "old.csv", exit_status::wrong_usage},
        {"a.csv", "1,2", "ball", "old.txt", exit_status::wrong_usage},
        {"a.csv", "1,2", "circle", "old.txt", exit_status::unreadable_input},
        {"a.csv", "1,2", "", "no/such/folder/a.txt", exit_status::internal},
    };
    record_folder const files;
    for (auto const& c : cases) {
        SCOPED_TRACE(std::string(c.name) + " to " + c.output);
        for (char const* old : {"old.csv", "old.txt", "old.hex", "old.xml"}) files.write(old, "old");
        std::string printed, message;
        EXPECT_EQ(
            try_to_convert(files.write(c.name, c.bytes), files.path(c.output), c.kind, printed, message),
            c.status);
        EXPECT_EQ(printed, "");
        expect_one_line(message);
        for (char const* old : {"old.csv", "old.txt", "old.hex", "old.xml"})
            EXPECT_EQ(files.read(old), "old");
        std::filesystem::remove(files.path(c.name));
        EXPECT_EQ(files.files(), 4);
    }
}

TEST(ConvertCommand, ChecksItsOptions) {
    struct {
        std::string to, method, precision;
        bool bare;
        exit_status status;
        char const* text;
    } const cases[] = {
        {"text", "", "3", false, exit_status::done, "((0.333 2))\n"},
        {"hex", "0", "", false, exit_status::done, nullptr},
        {"text", "3", "", false, exit_status::wrong_usage, ""},
        {"csv", "", "3", false, exit_status::wrong_usage, ""},
        {"text", "", "18", false, exit_status::wrong_usage, ""},
        {"hex", "4", "", false, exit_status::wrong_usage, ""},
        {"csv", "", "", true, exit_status::wrong_usage, ""},
        {"json", "", "", false, exit_status::wrong_usage, ""},
        {"", "", "", false, exit_status::wrong_usage, ""},  // standard output has no suffix
    };
    record_folder const files;
    std::string const input = files.write("a.csv", "0.33333333,2\n");
    for (auto const& c : cases) {
        SCOPED_TRACE(c.to + ' ' + c.method + ' ' + c.precision);
        std::ostringstream out, err;
        EXPECT_EQ(run_convert({input, "-", "", c.to, "", c.method, c.precision, c.bare}, out, err), c.status);
        if (c.text) {
            EXPECT_EQ(out.str(), c.text);
        }
    }
}

TEST(ConvertCommand, WritesThroughLinks) {
    record_folder const files;
    std::string const target = files.write("target.txt", "old");
    std::error_code error;
    std::filesystem::create_symlink("target.txt", files.path("link.txt"), error);
    if (error) GTEST_SKIP() << "no links here";
    convert(files.write("a.csv", "1,2\n"), files.path("link.txt"));
    EXPECT_TRUE(std::filesystem::is_symlink(files.path("link.txt")));
    EXPECT_EQ(files.read("target.txt"), "((1 2))\n");
}

// Whatever the bytes are: a record whose every figure is finite, or one line that says why not.
TEST(ConvertCommand, SurvivesDamagedFiles) {
    struct {
        char const *name, *bytes;
    } const seeds[] = {
        {"a.txt", "arc (((1 2 0 0) (1 0 2 0) (0 0 0 1)  (-0.5 0.5 0 0) (-0.5 0 0.5 0) (0 0 0 1)) 1.5)"},
        {"b.txt", "nurb ((0.5 0.5) (3 4 0 0 0 1 1 1 0 1 2 1 0 1 3 0 0 1 0 0 0 1 2 2 2))"},
        {"c.txt", "closed-spline (Bez ((0 0) (2 3) (4 3) (6 0) (5 -3) (1 -3) (0 0)))"},
        {"a.hex", "00000000000000F03F00000000000000400000000000000CC0"},
        {"a.xml",
         "<Cone Radius0='1' Radius1='2'><Point0 XAxis='0' YAxis='0' ZAxis='1'/>"
         "<Point1 XAxis='0' YAxis='1' ZAxis='1'/></Cone>"},
        {"b.xml", "<Points><Point XAxis='1' YAxis='2'/><Point XAxis='3' YAxis='4'/></Points>"},
    };
    record_folder const files;
    seeded_random random(7);
    for (int trial = 0; trial < 300; ++trial) {
        auto const& seed = seeds[trial % 6];
        std::string bytes = seed.bytes;
        auto const place = [&] { return std::size_t(random.uniform(0, double(bytes.size()))); };
        for (int n = 0; n < 2; ++n) bytes[place()] = "0(){}9 -e.<>F1'/\0x"[int(random.uniform(0, 19))];
        if (trial % 5 == 0) bytes.resize(1 + place());
        SCOPED_TRACE(bytes);
        file_form form{};
        std::shared_ptr<Geometry_Description> record;
        std::string reason;
        ASSERT_TRUE(find_form("", seed.name, form, reason));
        exit_status const status = read_record(files.write(seed.name, bytes), form, 0, record, reason);
        EXPECT_EQ(status, record ? exit_status::done : exit_status::unreadable_input) << reason;
        EXPECT_EQ(reason.empty(), status == exit_status::done);
        EXPECT_EQ(reason.find('\n'), std::string::npos);
        if (!record) continue;
        for (figure const& f : figures_of(*record)) {
            for (double const x : f.values) EXPECT_TRUE(std::isfinite(x)) << f.label;
        }
    }
}

}  // namespace
}  // namespace tvmath
