#include "tvmath/configuration.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "services/service_test.h"
#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

std::string value_of(Configuration& file, char16_t const* key) {
    wide_string value = u"(none)"_w;
    file.get_value(key, value);
    return to_utf8(value);
}

wide_string name_of(fs::path const& file) {
    return to_wide(file.string());
}

// Opens a file of this text, works on it, and gives the text that was stored.
std::string changed(std::string const& text, std::function<void(Configuration&)> const& work) {
    temporary_folder folder;
    write_bytes(folder / "a.ini", text.empty() ? "" : text_file(text));
    {
        Configuration file(name_of(folder / "a.ini"), true);
        work(file);
    }
    return read_text(folder / "a.ini");
}

TEST(Configuration, FindsWhatTheFormatSays) {
    struct {
        char const* name;
        std::string text;
        char const* value;  // of key k in section S; null when the section is not found
    } const cases[] = {
        {"plain", "[S]\r\nk=1\r\n", "1"},
        {"last line without end", "[S]\r\nk=1", "1"},
        {"lone CR and LF", "[A]\r[S]\nj=0\rk=1\nk=2\n", "1"},
        {"LF CR is one line end", "[S]\n\rk=1\n\r", "1"},
        {"indented header, text behind it", "x\r\n \t[S] more\r\nk=1\r\n", "1"},
        {"indented header ends no section", "[S]\r\n [T]\r\nk=1\r\n", "1"},
        {"header inside a value", "[A]\r\nj=[S]\r\nk=1\r\n", nullptr},
        {"header inside a value, then a true one", "[A]\r\nj=[S]\r\nk=0\r\n[S]\r\nk=1\r\n", "1"},
        {"case of the section", "[s]\r\nk=1\r\n", nullptr},
        {"case of the key", "[S]\r\nK=1\r\n", "(none)"},
        {"next section ends the search", "[S]\r\nj=0\r\n[T]\r\nk=1\r\n", "(none)"},
        {"longer key", "[S]\r\nkk=0\r\nk=1\r\n", "1"},
        {"blank before key, before equals sign", "[S]\r\n k=0\r\nk =0\r\n", "(none)"},
        {"value with equals signs and blanks", "[S]\r\nk= a=b= \r\n", " a=b= "},
        {"empty value", "[S]\r\nk=\r\n", ""},
        {"empty lines, no line ends in the header", "[S]\r\n\r\n\r\nk=1\r\n", "1"},
        {"first of two sections of a name", "[S]\r\nk=1\r\n[S]\r\nk=2\r\n", "1"},
        {"empty file", "", nullptr},
        {"header alone", "[S]", "(none)"},
        {"not at the start of a line", "ab[S]\r\nk=1\r\n", nullptr},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        std::string const after = changed(c.text, [&](Configuration& file) {
            EXPECT_EQ(file.select_section(u"S", false), c.value != nullptr);
            EXPECT_EQ(value_of(file, u"k"), c.value ? c.value : "(none)");
        });
        EXPECT_EQ(after, c.text);
    }
}

TEST(Configuration, ChangesOnlyWhatItIsAskedTo) {
    auto const set = [](char16_t const* key, char16_t const* value) {
        return [=](Configuration& file) {
            EXPECT_TRUE(file.select_section(u"S", true));
            EXPECT_TRUE(file.set_value(key, value));
            wide_string got;
            EXPECT_TRUE(file.get_value(key, got) && got == as_wide(value));
        };
    };
    auto const remove = [](Configuration& file) {
        EXPECT_TRUE(file.select_section(u"S", false));
        EXPECT_TRUE(file.remove_value(u"k"));
        EXPECT_EQ(value_of(file, u"k"), "(none)");
    };
    struct {
        char const* name;
        std::string before;
        std::function<void(Configuration&)> work;
        std::string after;
    } const cases[] = {
        {"new section in an empty file", "", set(u"k", u"1"), "\r\n[S]\r\nk=1\r\n"},
        {"new section behind text", "; free text", set(u"k", u"1"), "; free text\r\n[S]\r\nk=1\r\n"},
        {"new key above the others", "[S]\r\nj=0\r\n", set(u"k", u"1"), "[S]\r\nk=1\r\nj=0\r\n"},
        {"header without line end", "[S]", set(u"k", u"1"), "[S]\r\nk=1\r\n"},
        {"longer value", "[S]\r\nk=1\r\nj\r\n", set(u"k", u"12345"), "[S]\r\nk=12345\r\nj\r\n"},
        {"empty value at the end", "[S]\r\nk=1", set(u"k", u""), "[S]\r\nk="},
        {"line end of its own", "[S]\nk=1\rx", set(u"k", u"2"), "[S]\nk=2\rx"},
        {"remove a line", "[S]\r\nj=0\r\nk=1\r\n\r\n[T]\r\n", remove, "[S]\r\nj=0\r\n\r\n[T]\r\n"},
        {"remove one line end only", "[S]\nk=1\n\nx", remove, "[S]\n\nx"},
        {"remove the last line", "[S]\r\nk=1", remove, "[S]\r\n"},
        {"two keys, then another section", "[S]\r\n[T]\r\nx=1\r\n",
         [](Configuration& file) {
             EXPECT_TRUE(file.select_section(u"S", false));
             EXPECT_EQ(to_utf8(file.get_or_add_value(u"a", u"1")), "1");
             EXPECT_EQ(to_utf8(file.get_or_add_value(u"b", u"2")), "2");
             EXPECT_EQ(to_utf8(file.get_or_add_value(u"a", u"3")), "1");
             EXPECT_TRUE(file.select_section(u"T", false));
             EXPECT_TRUE(file.set_value(u"x", u"2"));
         },
         "[S]\r\nb=2\r\na=1\r\n[T]\r\nx=2\r\n"},
        {"nothing without a section", "[S]\r\nk=1\r\n",
         [](Configuration& file) {
             EXPECT_FALSE(file.set_value(u"k", u"2"));
             EXPECT_TRUE(file.select_section(u"S", false));
             EXPECT_FALSE(file.select_section(u"", true) || file.select_section(nullptr, true));
             EXPECT_FALSE(file.set_value(u"k", u"2") || file.remove_value(u"k"));
             EXPECT_TRUE(file.select_section(u"S", false));
             EXPECT_FALSE(file.set_value(nullptr, u"2") || file.remove_value(nullptr));
             EXPECT_FALSE(file.select_section(u"T", false));
             EXPECT_EQ(to_utf8(file.get_or_add_value(u"n", u"3")), "3");
         },
         "[S]\r\nk=1\r\n"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(changed(c.before, c.work), c.after);
    }
}

TEST(Configuration, KeepsTheTimeStampWhenNothingChanges) {
    temporary_folder folder;
    fs::path const name = folder / "a.ini";
    write_bytes(name, text_file("[S]\r\nk=1\r\n"));
    auto const stamp = fs::last_write_time(name) - std::chrono::hours(1);
    fs::last_write_time(name, stamp);
    {
        Configuration file(name_of(name), true);
        EXPECT_TRUE(file.select_section(u"S", true) && file.set_value(u"k", u"1"));
    }
    EXPECT_EQ(fs::last_write_time(name), stamp);
    EXPECT_FALSE(fs::exists(folder / "a.ini.backup"));
}

TEST(Configuration, MakesAMissingFileOnlyWhenAsked) {
    installation place;
    fs::path const name = place.other("new.ini");
    EXPECT_TRUE(in_fresh_process([&] {
        EXPECT_FALSE(Configuration(name_of(name), true).select_section(u"S", false));
        EXPECT_FALSE(fs::exists(name));
        Configuration file(name_of(name), true);
        EXPECT_TRUE(file.select_section(u"S", true));
        EXPECT_EQ(fs::file_size(name), 0u);
    }));
    EXPECT_EQ(read_bytes(name), text_file("\r\n[S]\r\n"));
    EXPECT_EQ(read_bytes(name.string() + ".backup"), "");
    EXPECT_FALSE(fs::exists(place.common("error.trl")));
}

TEST(Configuration, KeepsThePreviousGenerationAndTheAccessRights) {
    temporary_folder folder;
    fs::path const name = folder / "a.ini";
    for (bool const recoverable : {false, true}) {
        write_bytes(name, text_file("[S]\r\nk=1\r\n"));
        fs::permissions(name, fs::perms(0604));
        Configuration(name_of(name), recoverable).select_section(u"T", true);
        EXPECT_EQ(read_text(name), "[S]\r\nk=1\r\n\r\n[T]\r\n");
        EXPECT_EQ(fs::status(name).permissions(), fs::perms(0604));
        EXPECT_EQ(read_text(folder / "a.ini.backup"), recoverable ? "[S]\r\nk=1\r\n" : "(no file)");
        EXPECT_FALSE(fs::exists(folder / "a.ini.tmp"));
    }
}

// An odd byte is half a unit whose other half is 0.
TEST(Configuration, ReadsAnOddByteAsFarAsItGoes) {
    temporary_folder folder;
    write_bytes(folder / "a.ini", text_file("[S]\r\nk=1") + "2");
    Configuration file(name_of(folder / "a.ini"), true);
    EXPECT_TRUE(file.select_section(u"S", false));
    EXPECT_EQ(value_of(file, u"k"), "12");
}

std::string zeros() {
    return std::string(40, '\0');
}

// Every damage of the file with every state of its backup.
TEST(Configuration, RecoversFromDamage) {
    std::string const good = text_file("[S]\r\nk=1\r\n");
    std::string flipped = good;
    flipped[0] ^= 4;
    std::string const zero_text = "\xFF\xFE" + zeros();
    struct state {
        char const* name;
        std::string bytes;
        bool usable;
    };
    state const damages[] = {{"zeroed", zeros(), false},
                             {"cut to a byte", "\xFF", false},
                             {"bit flipped in the mark", flipped, false},
                             {"zeros behind the mark", zero_text, false},
                             {"ASCII", "[S]\r\nk=1\r\n", false}};
    state const backups[] = {{"good", good, true},       {"missing", "", false},
                             {"zeroed", zeros(), false}, {"flipped", flipped, false},
                             {"cut", "\xFF", false},     {"zero text", zero_text, false}};
    for (state const& damage : damages) {
        for (state const& backup : backups) {
            SCOPED_TRACE(std::string(damage.name) + ", backup " + backup.name);
            installation place;
            std::string const name = place.other("a.ini").string(), kept = name + ".backup";
            write_bytes(name, damage.bytes);
            if (!backup.bytes.empty()) write_bytes(kept, backup.bytes);
            EXPECT_TRUE(in_fresh_process([&] {
                Configuration file(to_wide(name), true);
                EXPECT_EQ(file.select_section(u"S", false), backup.usable);
                EXPECT_EQ(value_of(file, u"k"), backup.usable ? "1" : "(none)");
            }));
            EXPECT_EQ(read_text(name), backup.usable ? "[S]\r\nk=1\r\n" : "");
            EXPECT_EQ(read_bytes(name + ".corrupt"), damage.bytes);
            EXPECT_EQ(fs::exists(kept), backup.usable);
            std::string expected = name + " is corrupt and will be renamed as " + name + ".corrupt\r\n";
            if (!backup.bytes.empty()) expected += "Using " + kept + "\r\n";
            if (!backup.bytes.empty() && !backup.usable)
                expected += kept + " is corrupt and will be deleted\r\n";
            EXPECT_EQ(log_messages(place.common("error.trl")), expected);
        }
    }
}

TEST(Configuration, LeavesADamagedFileWithoutBackupAlone) {
    installation place;
    std::string const name = place.other("a.ini").string();
    write_bytes(name, zeros());
    EXPECT_TRUE(in_fresh_process([&] {
        Configuration file(to_wide(name), false);
        EXPECT_FALSE(file.select_section(u"S", true));
        EXPECT_FALSE(file.select_section(u"S", true));
        EXPECT_FALSE(file.set_value(u"k", u"1"));
    }));
    EXPECT_EQ(read_bytes(name), zeros());
    EXPECT_EQ(log_messages(place.common("error.trl")), name + " is corrupt\r\n");
}

// What a failed open or store leaves behind: the old file, no other, and the message after the system's
// reason.
TEST(Configuration, LeavesTheOldFileWhenItCannotStore) {
    installation place;
    std::string const name = place.other("a.ini").string();
    std::string const failure = "Failure to store configuration to " + name + ".tmp\r\n";
    auto const store = [&](std::size_t size) {
        Configuration file(to_wide(name), true);
        EXPECT_TRUE(file.select_section(u"S", false));
        EXPECT_TRUE(file.set_value(u"k", to_wide(std::string(size, 'x')).c_str()));
    };
    write_bytes(name, text_file("[S]\r\nk=1\r\n"));
    EXPECT_TRUE(in_fresh_process([&] {  // the limit's signal would end the process
        rlimit const limit{8192, 8192};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        store(100000);
    }));
    EXPECT_EQ(read_text(name), "[S]\r\nk=1\r\n");
    EXPECT_FALSE(fs::exists(name + ".tmp"));
    EXPECT_TRUE(log_messages(place.common("error.trl")).ends_with(failure));

    fs::create_directory(name + ".tmp");  // nobody can write a file of that name
    EXPECT_TRUE(in_fresh_process([&] { store(10); }));
    EXPECT_EQ(read_text(name), "[S]\r\nk=1\r\n");
    EXPECT_TRUE(log_messages(place.common("error.trl")).ends_with("directory\r\n" + failure));
}

TEST(Configuration, ReportsAFolderThatItMayNotWrite) {
    installation place;
    std::string const name = place.other("locked/a.ini").string();
    write_bytes(name, text_file("[S]\r\nk=1\r\n"));
    fs::permissions(place.other("locked"), fs::perms(0555));
    fs::create_directories(place.common(""));
    fs::permissions(place.common(""), fs::perms(0777));
    if (!in_fresh_process([] { EXPECT_TRUE(become_ordinary_user()); }))
        GTEST_SKIP() << "only the superuser here";
    EXPECT_TRUE(in_fresh_process([&] {
        become_ordinary_user();
        Configuration(to_wide(name), true).select_section(u"T", true);
        EXPECT_FALSE(Configuration(to_wide(name + "x"), true).select_section(u"T", true));
    }));
    EXPECT_EQ(read_text(name), "[S]\r\nk=1\r\n");
    EXPECT_EQ(log_messages(place.common("error.trl")),
              name + ".tmp: Permission denied\r\nFailure to store configuration to " + name + ".tmp\r\n" +
                  name + "x: Permission denied\r\nFailed to open or create file for reading: " + name +
                  "x\r\n");
}

TEST(Configuration, AddsUpWhatManyProcessesCount) {
    temporary_folder folder;
    wide_string const name = name_of(folder / "a.ini");
    auto const count_up = [&] {
        for (int i = 0; i < 200; ++i) {
            Configuration file(name, true);
            if (!file.select_section(u"S", true)) continue;
            int const count = std::stoi(to_utf8(file.get_or_add_value(u"count", u"0")));
            file.set_value(u"count", to_wide(std::to_string(count + 1)).c_str());
        }
    };
    {
        std::vector<std::unique_ptr<child_process>> processes;
        for (int i = 0; i < 8; ++i) processes.push_back(std::make_unique<child_process>(count_up));
        for (auto const& process : processes) EXPECT_TRUE(process->succeeded());
    }
    Configuration file(name, true);
    EXPECT_TRUE(file.select_section(u"S", false));
    EXPECT_EQ(value_of(file, u"count"), "1600");
}

// Whatever the bytes are: a key that is put in and taken out again leaves the text as it was, but for the
// header of a section that was missing.
TEST(Configuration, PreservesWhatItDoesNotKnow) {
    seeded_random random(20260704);
    temporary_folder folder;
    fs::path const name = folder / "a.ini";
    std::string const seed =
        text_file("x\r\n[A]\r\nk=1\r\n [S] t\r\nkey=[S]\r\n\r\n[S]\r\nlong=abc\r\n[S]k=2");
    for (int trial = 0; trial < 3000; ++trial) {
        SCOPED_TRACE(trial);
        std::string bytes = seed;
        for (unsigned int i = random.below(12); i != 0 && bytes.size() > 2; --i) {
            std::size_t const at = 2 + random.below(static_cast<unsigned int>(bytes.size() - 2));
            std::size_t const other = 2 + random.below(static_cast<unsigned int>(bytes.size() - 2));
            switch (random.below(5)) {
                case 0:
                    bytes[at] = static_cast<char>(random.bits());
                    break;
                case 1:
                    bytes.erase(at, random.below(9));
                    break;
                case 2:
                    bytes.insert(at & ~1u, bytes.substr(other & ~1u, 2 * random.below(20)));
                    break;
                case 3:
                    bytes.resize(at);
                    break;
                default:
                    bytes[at & ~1u] = "\r\n[]= Sk"[random.below(8)];
                    break;
            }
        }
        bytes.append(bytes.size() % 2, '\0');
        if (bytes.size() > 2 && bytes[2] == 0 && bytes[3] == 0) continue;  // damage is another test's matter
        write_bytes(name, bytes);
        bool found = false;
        {
            Configuration file(name_of(name), true);
            found = file.select_section(u"S", false);
            ASSERT_TRUE(file.select_section(u"S", true));
            ASSERT_EQ(to_utf8(file.get_or_add_value(u"new key", u"some=value [S]")), "some=value [S]");
            ASSERT_TRUE(file.set_value(u"new key", u"other"));
            ASSERT_EQ(value_of(file, u"new key"), "other");
            ASSERT_TRUE(file.remove_value(u"new key"));
        }
        std::string const after = read_bytes(name), line_end = text_file("\r\n").substr(2);
        if (!found) {
            ASSERT_EQ(after, bytes + text_file("\r\n[S]\r\n").substr(2));
        } else if (after != bytes) {
            ASSERT_EQ(after, bytes + line_end);  // a header that ended the file
        }
    }
}

}  // namespace
}  // namespace tvmath
