#include <gtest/gtest.h>

#include <sstream>

#include "calibrate/calibrate_command.h"
#include "calibrate/corrector_file.h"
#include "command_outcome.h"
#include "record_files.h"
#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

outcome run(correct_request const& request) {
    std::ostringstream out, err;
    exit_status const status = run_correct(request, out, err);
    return {static_cast<int>(status), out.str(), err.str()};
}

// On a screen of 2 x 2 the coordinates are u and v themselves.
TEST(CorrectCommand, MovesPointsAsWorkedByHand) {
    record_folder const folder;
    struct {
        char const *corrector, *points, *applied, *removed;
    } const cases[] = {
        // x += 1 + 2 x + 3 y
        {"screen (0 (1 2 3)(0 0 0) 2 2)", "1,2\n", "x,y\n10.0,2.0\n", "x,y\n-8.0,2.0\n"},
        {" ( 0 (1 2 3)(0 0 0)\n2 2)", "1,2,5\n", "x,y,z\n10.0,2.0,5.0\n", "x,y,z\n-8.0,2.0,5.0\n"},
        // z += 1 + 2 T2(x): lengths stand there in thousandths
        {"flatness (0 (1000 0 0 2000 0 0) 2 2 0)", "3,1\n", "x,y,z\n3.0,1.0,35.0\n",
         "x,y,z\n3.0,1.0,-35.0\n"},
        {"(0 (1000 0 0 2000 0 0) 2 2 0)\n", "3,1,5\n", "x,y,z\n3.0,1.0,40.0\n", "x,y,z\n3.0,1.0,-30.0\n"},
        // x += z (x + 2), y += z (y + 3); removed with z / (1 + z)
        {"telecentricity (0 1e-3 2 3 0 0 0)", "10,20,1\n", "x,y,z\n22.0,43.0,1.0\n", "x,y,z\n4.0,8.5,1.0\n"},
        {"(0 1e-3 2 3 0 0 0)", "10,20,0\n", "x,y,z\n10.0,20.0,0.0\n", "x,y,z\n10.0,20.0,0.0\n"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.corrector);
        correct_request request{.corrector = folder.write("c.txt", c.corrector),
                                .points = folder.write("p.csv", c.points)};
        EXPECT_EQ(run(request).out, c.applied);
        request.remove = true;
        request.output = folder.path("out.csv");
        outcome const o = run(request);
        EXPECT_EQ(o.out + o.err, "");
        EXPECT_EQ(folder.read("out.csv"), c.removed);
    }
}

TEST(CorrectCommand, CountsHeightsFromTheReference) {
    record_folder const folder;
    correct_request const request{.corrector = folder.write("c.txt", "telecentricity (0 1e-3 2 3 0 0 0)"),
                                  .points = folder.write("p.csv", "10,20,31.7\n"),
                                  .output = "-",
                                  .z_reference = "30.7"};
    EXPECT_EQ(run(request).out, "x,y,z\n22.0,43.0,31.7\n");
}

// Any corrector in use comes back from its text, with the word and without.
TEST(CorrectCommand, ReadsWhatIsWritten) {
    seeded_random random(77);
    for (int trial = 0; trial < 30; ++trial) {
        unsigned const order = 1 + random.below(6), n = (order + 1) * (order + 2) / 2;
        screen_corrector screen;
        screen.order = order;
        screen.coefficients = matrix(2, n);
        flatness_corrector flatness;
        flatness.order = order;
        flatness.x_scale = flatness.y_scale = 0.01;
        flatness.coefficients = vector(n);
        for (unsigned i = 0; i < n; ++i) {
            screen.coefficients(0).lazycopy_begin()[i] = random.normal();
            screen.coefficients(1).lazycopy_begin()[i] = random.normal() * 1e-7;
            flatness.coefficients.lazycopy_begin()[i] = random.normal() * 1e5;
        }
        telecentricity_corrector telecentricity;
        telecentricity.residual = random.uniform(0, 1);
        telecentricity.magnification = random.normal() * 1e-9;
        telecentricity.tilt_x = random.normal();
        for (any_corrector const& c :
             {any_corrector(screen), any_corrector(flatness), any_corrector(telecentricity)}) {
            std::string const text = corrector_text(c);
            std::string reason;
            any_corrector read, bare;
            ASSERT_TRUE(read_corrector_text(text, read, reason)) << reason;
            ASSERT_TRUE(read_corrector_text(text.substr(text.find('(')), bare, reason)) << reason;
            ASSERT_EQ(read.index(), c.index());
            ASSERT_EQ(bare.index(), c.index());
            point const p(true, random.uniform(-300, 300), random.uniform(-200, 200), random.uniform(-9, 9));
            auto const moved = [&p](any_corrector const& by) {
                return std::visit([&p](auto const& known) { return p * known; }, by);
            };
            // Factors of 1000 cost a rounding each.
            double const size = distance3d(moved(c), p) + 1e-9;
            EXPECT_LT(distance3d(moved(read), moved(c)), 1e-12 * (size + 400));
            EXPECT_LT(distance3d(moved(bare), moved(c)), 1e-12 * (size + 400));
        }
    }
}

TEST(CorrectCommand, SaysInOneLineWhatIsWrong) {
    record_folder const folder;
    std::string const flat = folder.write("flat.csv", "1,2\n"), deep = folder.write("deep.csv", "1,2,3\n"),
                      far = folder.write("far.csv", "1e300,2,3\n");
    char const *const screen = "screen (1 (1 2 3 4 5 6)(1 2 3 4 5 6) 640 480)",
                      *const tele = "telecentricity (1 2 3 4 5 6 7)";
    struct {
        std::string corrector, points;
        int status;
        std::string reason, reference = "", output = "";
    } const cases[] = {
        {"", flat, 3, "is empty"},
        {"x,y\n1,2\n", flat, 3, "it begins with 'x,y'"},
        {"()", flat, 3, "does nothing"},
        {"screen ()", flat, 3, "does nothing"},
        {"screen (1 (1 2 3)(1 2 3) 640 480", flat, 3, "breaks off"},
        {"screen (1 (1 2 3)(1 2 3) 640 480) 4", flat, 3, "no brackets around"},
        {"screen (1 (1 2)(1 2) 640 480)", flat, 3, "not as many as an order"},
        {"screen (1 (1 2 3)(1 2 3) 640 0)", flat, 3, "not the text of a screen corrector"},
        {"screen (1 (1 2 nan)(1 2 3) 640 480)", flat, 3, "'nan' is not a finite number"},
        {"flatness (1 2 3 4 5 6 7)", flat, 3, "not the text of a flatness corrector"},
        {"(1 2 3 4 5 6 7 8)", flat, 3, "not the text of a corrector"},
        {"(((1)))", flat, 3, "more brackets"},
        {std::string(1 << 21, '('), flat, 3, "larger than 1 MiB"},
        {std::string("scr\0\n\x1b", 6), flat, 3, "it begins with"},
        {screen, folder.path("none"), 3, "cannot be opened"},
        {screen, flat, 2, "--z-reference goes with telecentricity", "1"},
        {screen, flat, 2, "the suffix", "", folder.path("out.gif")},
        {screen, far, 4, "point 1 is too far away"},
        {screen, flat, 5, "cannot be written", "", folder.path("no folder/out.csv")},
        {tele, flat, 4, "needs the height of each point"},
        {tele, deep, 2, "--z-reference: 'x'", "x"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.reason);
        outcome const o = run({.corrector = folder.write("c.txt", c.corrector),
                               .points = c.points,
                               .output = c.output,
                               .z_reference = c.reference});
        EXPECT_EQ(o.status, c.status);
        EXPECT_NE(o.err.find(c.reason), std::string::npos) << o.err;
        expect_one_line(o.err);
        EXPECT_EQ(o.out, "");
    }
}

}  // namespace
}  // namespace tvmath
