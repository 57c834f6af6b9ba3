#include "tvmath/error_log.h"

#include <gtest/gtest.h>
#include <regex.h>
#include <sys/syscall.h>

#include <cmath>
#include <cstdio>
#include <set>
#include <sstream>
#include <thread>

#include "services/service_test.h"
#include "tvmath/version.h"

inline namespace tvmath {
namespace {

// The whole text and the bracketed parts of the extended regular expression that it matches; empty if not.
std::vector<std::string> parts_of(std::string const& text, std::string const& expression) {
    regex_t compiled{};
    regmatch_t found[8];
    std::vector<std::string> parts;
    if (::regcomp(&compiled, ("^" + expression + "$").c_str(), REG_EXTENDED) != 0) return parts;
    if (::regexec(&compiled, text.c_str(), 8, found, 0) == 0) {
        for (regmatch_t const& part : found) {
            if (part.rm_so < 0) break;
            parts.push_back(text.substr(static_cast<std::size_t>(part.rm_so),
                                        static_cast<std::size_t>(part.rm_eo - part.rm_so)));
        }
    }
    ::regfree(&compiled);
    return parts;
}

bool matches(std::string const& text, std::string const& expression) {
    return !parts_of(text, expression).empty();
}

void set_time_zone(char const* zone) {
    ::setenv("TZ", zone, 1);
    ::tzset();
}

TEST(ErrorLog, WritesThePrefixAndTheMessage) {
    struct {
        char const* zone;
        std::string offset;
    } const zones[] = {{"UTC0", "Z"},
                       {"TST-5:30", "\\+05:30"},
                       {"TST3:30", "-03:30"},
                       {"TST0:30", "-00:30"},
                       {"TST-13", "\\+13:00"}};
    for (auto const& zone : zones) {
        SCOPED_TRACE(zone.zone);
        installation place;
        EXPECT_TRUE(in_fresh_process([&] {
            set_time_zone(zone.zone);
            int const numbers[] = {12, -3, 4};
            error_log_entry("scanner.cpp", 120)(u"%d lines lost on %s\r\n", 7, u"\u00D8");
            error_log_entry("a.cpp", numbers, 3)(u"\r\n");
            error_log_entry("a.cpp", 1, 2)(u"\r\n");
            error_log_entry("", nullptr, 0)(u"\r\n");
        }));
        std::string const time = "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}" + zone.offset,
                          prefix = time + ", v" TVMATH_VERSION_STRING ", \\(0x[0-9A-F]+\\), ";
        std::string const log = read_text(place.common("error.trl"));
        EXPECT_TRUE(matches(log, prefix + "scanner\\.cpp\\(120\\): 7 lines lost on \xC3\x98\r\n" + prefix +
                                     "a\\.cpp\\(12,-3,4\\): \r\n" + prefix + "a\\.cpp\\(1,2\\): \r\n" +
                                     prefix + "\\(\\): \r\n"))
            << log;
    }
}

TEST(ErrorLog, TellsTimeAndThread) {
    installation place;
    time_t const before = ::time(nullptr);
    shared_number thread;
    EXPECT_TRUE(in_fresh_process([&] {
        set_time_zone("UTC0");
        thread->store(static_cast<int>(::syscall(SYS_gettid)));
        error_log_entry("a.cpp", 1)(u"\r\n");
    }));
    std::string const log = read_text(place.common("error.trl"));
    tm parts{};
    unsigned int id = 0;
    ASSERT_EQ(std::sscanf(log.c_str(), "%d-%d-%dT%d:%d:%dZ, v%*[^,], (0x%X)", &parts.tm_year, &parts.tm_mon,
                          &parts.tm_mday, &parts.tm_hour, &parts.tm_min, &parts.tm_sec, &id),
              7)
        << log;
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    time_t const logged = ::timegm(&parts);
    EXPECT_TRUE(logged >= before && logged <= ::time(nullptr)) << log;
    EXPECT_EQ(static_cast<int>(id), thread->load());
}

TEST(ErrorLog, CutsALongPosition) {
    installation place;
    EXPECT_TRUE(in_fresh_process([] {
        std::vector<int> const numbers(100, 1234);
        error_log_entry("a.cpp", numbers.data(), 100)(u"end\r\n");
    }));
    std::string const log = read_text(place.common("error.trl"));
    std::size_t const start = log.find("a.cpp(") + 6;
    EXPECT_EQ(log.find("): end\r\n") - start, 249u);
}

// The C library's printf is the reference, for the arguments that it takes.
TEST(ErrorLog, FormatsAsPrintfDoes) {
    installation place;
    std::string expected;
    auto const add = [&](char const* format, auto... values) {
        char line[600];
        std::snprintf(line, sizeof line, format, values...);
        expected += line + std::string("\r\n");
    };
    auto const both = [&](bool log, char const* format, auto... values) {
        if (!log) return add(format, values...);
        error_log_entry("a.cpp", 1)(to_wide(format + std::string("\r\n")), values...);
    };
    auto const all = [&](bool log) {
        for (char const* const format :
             {"%d", "%5d|", "%-5d|", "%05d", "%+d", "% d", "%.3d", "%8.3d|", "%x", "%#X", "%#o", "%u", "%c",
              "%hhd", "%hd", "%+.0d", "%#010x", "%-+8d|", "%i"}) {
            for (int const value : {0, 65, -65, 1 << 30, -2147483647 - 1}) {
                if (std::string(format) != "%c" || value == 65) both(log, format, value);
            }
        }
        for (char const* const format : {"%f", "%e", "%g", "%G", "%10.2f|", "%-10.2f|", "%010.2f", "%+g",
                                         "%.0f", "%.17g", "%E", "%a", "%.3a", "%A", "% .3e"}) {
            for (double const value : {0.0, -0.0, 1.5, -2.25, 1e100, 1e-7, 123456789.0, 1.0 / 3, HUGE_VAL}) {
                both(log, format, value);
            }
        }
        for (char const* const format : {"%ld", "%lu", "%lx"}) {
            for (long const value : {1234567890123456789L, -1L}) both(log, format, value);
        }
        both(log, "%*d|%-*d|%.*f|%%|%hhu", 6, 42, -6, 43, 2, 2.0 / 3, 200);
    };
    all(false);
    EXPECT_TRUE(in_fresh_process([&] {
        all(true);
        wide_string const text = u"abc"_w;
        error_log_entry("a.cpp", 1)(u"%s|%5s|%-5s|%.2s|%hs|%S|%s\r\n", text, text.c_str(), u"abc", text,
                                    "abc", std::string("\xC3\x98"), static_cast<wide_char const*>(nullptr));
    }));
    expected += "abc|  abc|abc  |ab|abc|\xC3\x98|\r\n";
    EXPECT_EQ(log_messages(place.common("error.trl")), expected);
}

// Formats that come at run time cannot be compared with their arguments: nothing is read that is not there.
TEST(ErrorLog, SurvivesWrongFormats) {
    installation place;
    EXPECT_TRUE(in_fresh_process([] {
        char16_t const* const formats[] = {u"%s %d\r\n", u"%d %s %p %f\r\n", u"%",
                                           u"%y\r\n",    u"%-\r\n",          u"%99999999999d\r\n",
                                           u"%.*f\r\n",  u"%n\r\n",          nullptr};
        for (char16_t const* format : formats) {
            error_log_entry("a.cpp", 1)(format, 5, u"text");
            error_log_entry("a.cpp", 1)(format);
        }
    }));
    EXPECT_TRUE(log_messages(place.common("error.trl")).starts_with("5 text\r\n%s %d\r\n5 text %p %f\r\n"));
}

int log_and_return(int value) {
    error_log_entry("inner.cpp", 2)(u"inner\r\n");
    return value;
}

TEST(ErrorLog, DoesNothingInsideItself) {
    installation place;
    EXPECT_TRUE(in_fresh_process([] {
        error_log_entry("a.cpp", 1)(u"%d\r\n", log_and_return(7));
        log_and_return(8);
        error_log_entry("a.cpp", 1);  // without a message, it must not hold the log
        std::thread([] { error_log_entry("a.cpp", 1)(u" other thread\r\n"); }).join();
    }));
    std::string const log = read_text(place.common("error.trl"));
    EXPECT_TRUE(matches(log, ".*: 7\r\n.*: inner\r\n.*\\(1\\): .*\\(1\\):  other thread\r\n")) << log;
}

TEST(ErrorLog, RollsOverAtTheStartOfAProcess) {
    for (std::size_t const size : {512000u, 512001u}) {
        for (bool const has_old : {false, true}) {
            SCOPED_TRACE(size);
            installation place;
            std::string const full(size, 'x');
            write_bytes(place.common("error.trl"), full);
            if (has_old) write_bytes(place.common("error.bak"), "old");
            EXPECT_TRUE(in_fresh_process([&] {
                error_log_entry("a.cpp", 1)(u"first\r\n");
                write_bytes(place.common("error.trl"), full);  // outgrows the limit within this process
                error_log_entry("a.cpp", 1)(u"second\r\n");
            }));
            bool const rolls = size > 512000;
            EXPECT_EQ(read_bytes(place.common("error.bak")), rolls ? full : has_old ? "old" : "");
            EXPECT_GT(fs::file_size(place.common("error.trl")), size);
        }
    }
}

TEST(ErrorLog, IsSilentWhereItCannotWrite) {
    installation place;
    fs::create_directories(place.common("error.trl"));
    EXPECT_TRUE(in_fresh_process([] { error_log_entry("a.cpp", 1)(u"%d\r\n", 1); }));
    EXPECT_TRUE(fs::is_empty(place.common("error.trl")));

    // No common folder can be made below a file: the log stands beside the executable.
    installation without_data;
    write_bytes(without_data.other("data"), "");
    EXPECT_TRUE(in_fresh_process([] { error_log_entry("a.cpp", 1)(u"%d\r\n", 1); }));
    EXPECT_EQ(log_messages(without_data.beside_executable("error.trl")), "1\r\n");
}

TEST(ErrorLog, GoesOnAfterAHolderWasKilled) {
    installation place;
    shared_number holds;
    child_process holder([&] {
        auto const& entry = error_log_entry("dead.cpp", 1);
        holds->store(1);
        for (;;) ::pause();
        (void)entry;
    });
    while (holds->load() == 0) std::this_thread::yield();
    holder.kill();
    EXPECT_TRUE(in_fresh_process([] { error_log_entry("a.cpp", 1)(u"alive\r\n"); }));
    EXPECT_TRUE(read_text(place.common("error.trl")).ends_with("a.cpp(1): alive\r\n"));
}

// Processes with two threads each.
TEST(ErrorLog, KeepsEntriesOfManyProcessesWhole) {
    installation place;
    auto const log_entries = [](int process) {
        auto const half = [process](int from) {
            for (int i = from; i < from + 100; ++i) {
                wide_string const filler(static_cast<std::size_t>(i), 'x');
                error_log_entry("a.cpp", process)(u"%d of %d %s.\r\n", i, process, filler);
            }
        };
        std::thread other(half, 100);
        half(0);
        other.join();
    };
    {
        std::vector<std::unique_ptr<child_process>> processes;
        for (int p = 0; p < 8; ++p) {
            processes.push_back(std::make_unique<child_process>([=] { log_entries(p); }));
        }
        for (auto const& process : processes) EXPECT_TRUE(process->succeeded());
    }
    std::string const whole =
        "[0-9]{4}-[^ ]*, v[^ ]*, \\(0x[0-9A-F]+\\), a\\.cpp\\(([0-7])\\): ([0-9]+) of ([0-7]) (x*)\\.\r";
    std::set<std::string> found;
    std::istringstream log(read_text(place.common("error.trl")));
    for (std::string line; std::getline(log, line);) {
        std::vector<std::string> const part = parts_of(line, whole);
        ASSERT_EQ(part.size(), 5u) << line;
        EXPECT_TRUE(part[1] == part[3] && part[4].size() == std::stoul(part[2])) << line;
        found.insert(part[1] + "/" + part[2]);
    }
    EXPECT_EQ(found.size(), 1600u);
}

}  // namespace
}  // namespace tvmath
