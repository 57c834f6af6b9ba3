#include "record/show_command.h"

#include <gtest/gtest.h>

#include <sstream>

#include "fit/fit_command.h"
#include "plot/canvas.h"
#include "record/record_xml.h"
#include "record_files.h"

inline namespace tvmath {
namespace {

TEST(ShowCommand, ReportsTheParameters) {
    // Radius 2 about (1, 3), and the area of a square of 4 that the corners surround, by hand.
    struct {
        char const *name, *bytes, *kind;
        std::vector<std::string> lines;
    } const cases[] = {
        {"a.txt",
         "circle ((1 2 0 0) (3 0 2 0) (0 0 0 1)  (-0.5 0.5 0 0) (-1.5 0 0.5 0) (0 0 0 1))",
         "",
         {"circle  ", "center x  1.0\n", "center y  3.0\n", "radius    2.0\n", "diameter  4.0\n"}},
        {"b.xml",
         "<Slot Major-Radius='3' Minor-Radius='1' orientation='0'><Center XAxis='5' YAxis='6'/></Slot>",
         "",
         {"slot  ", "length      6.0\n", "width       2.0\n", "center x    5.0\n"}},
        {"c.csv",
         "0,0\n4,0\n4,4\n0,4\n",
         "closed-data",
         {"closed-data  ", "points      4\n", "centroid x  2.0\n", "highest y   4.0\n"}},
        {"d.txt", "rotation 0.5", "", {"angle deg  28.6478897565", "angle rad   0.5\n"}},
    };
    record_folder const files;
    for (auto const& c : cases) {
        if (!reads_xml() && std::string(c.name).ends_with(".xml")) continue;
        SCOPED_TRACE(c.name);
        std::ostringstream out, err;
        EXPECT_EQ(run_show({files.write(c.name, c.bytes), "", c.kind, ""}, out, err), exit_status::done)
            << err.str();
        for (std::string const& line : c.lines)
            EXPECT_NE(out.str().find(line), std::string::npos) << out.str();
    }
}

// What `fit` writes, `show` reads, with the figures that the points were made for: a circle of radius 5.
TEST(ShowCommand, ReadsWhatFitWrites) {
    record_folder const files;
    std::string const points = files.write("p.csv", "5,0\n0,5\n-5,0\n0,-5\n3,4\n");
    for (std::string const form : {"text", "xml"}) {
        if (form == "xml" && !reads_xml()) continue;
        fit_request request;
        request.kind = "circle";
        request.files = {points};
        request.record = form;
        std::ostringstream printed, report, shown, err;
        EXPECT_EQ(run_fit(request, printed, err), exit_status::done) << err.str();
        request.record_file = files.path("record");
        EXPECT_EQ(run_fit(request, report, err), exit_status::done) << err.str();
        EXPECT_EQ(files.read("record"), printed.str());
        EXPECT_NE(report.str().find("degrees of freedom"), std::string::npos);
        EXPECT_EQ(run_show({files.path("record"), form, "", ""}, shown, err), exit_status::done) << err.str();
        EXPECT_NE(shown.str().find("radius     5.0\n"), std::string::npos) << shown.str();
    }
}

TEST(ShowCommand, RefusesRecordsThatCannotBeWritten) {
    record_folder const files;
    std::string const points = files.write("p.csv", "5,0\n0,5\n-5,0\n0,-5\n3,4\n");
    struct {
        std::string kind, record, record_file;
        bool json;
        std::size_t files;
        exit_status status;
    } const cases[] = {{"circle", "hex", "", false, 1, exit_status::wrong_usage},
                       {"circle", "", files.path("a.doc"), false, 1, exit_status::wrong_usage},
                       {"circle", "text", "", false, 2, exit_status::wrong_usage},
                       {"circle", "text", "", true, 1, exit_status::wrong_usage},
                       {"closed-nurb", "xml", "", false, 1, exit_status::no_answer}};
    for (auto const& c : cases) {
        SCOPED_TRACE(c.kind + ' ' + c.record);
        fit_request request;
        request.kind = c.kind;
        request.files.assign(c.files, points);
        request.record = c.record;
        request.record_file = c.record_file;
        request.json = c.json;
        std::ostringstream out, err;
        EXPECT_EQ(run_fit(request, out, err), c.status);
        expect_one_line(err.str());
        EXPECT_EQ(out.str(), "");
    }
}

TEST(ShowCommand, DrawsWhatItReads) {
    record_folder const files;
    std::string square = files.write("s.csv", "0,0\n4,0\n4,4\n0,4\n"), many;
    std::ostringstream table, out, err;
    EXPECT_EQ(run_show({square, "", "closed-data", "-"}, table, err), exit_status::done);
    EXPECT_NE(table.str().find("1,outline,1,4.0,4.0,\n"), std::string::npos) << table.str();
    EXPECT_EQ(run_show({files.write("n.txt", "number 3"), "", "", "-"}, out, err), exit_status::no_answer);
    EXPECT_EQ(run_show({square, "", "", "a.doc"}, out, err), exit_status::wrong_usage);
    if (!is_picture_suffix(".svg")) return;
    // Marks of a dense cloud fall on each other: the picture stays small.
    for (int i = 0; i < 300 * 300; ++i)
        many += std::to_string(i % 300 * 1e-3) + ',' + std::to_string(i / 300) + '\n';
    files.write("m.csv", many);
    EXPECT_EQ(run_show({files.path("m.csv"), "", "", files.path("m.svg")}, out, err), exit_status::done);
    EXPECT_EQ(files.read("m.svg").rfind("<?xml", 0), 0u);
}

}  // namespace
}  // namespace tvmath
