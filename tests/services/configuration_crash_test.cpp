#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "services/service_test.h"
#include "support/seeded_random.h"
#include "tvmath/configuration.h"

inline namespace tvmath {
namespace {

// What generation n of the file is, with a length that goes up and down.
std::string generation(int n) {
    std::string const number = std::to_string(n), pad(static_cast<std::size_t>(n % 97) * 61, 'x');
    return "[Count]\r\nfirst=" + number + "\r\npad=" + pad + "\r\nlast=" + number + "\r\n";
}

// The number of a file that is a whole generation; -1 for any other.
int generation_of(fs::path const& name) {
    std::string const text = read_text(name), mark = "first=";
    std::size_t const at = text.find(mark);
    if (at == std::string::npos) return -1;
    int const n = std::atoi(text.c_str() + at + mark.size());
    return text == generation(n) ? n : -1;
}

void store_next(wide_string const& name, int n) {
    Configuration file(name, true);
    if (!file.select_section(u"Count", false)) ::_exit(2);
    file.set_value(u"first", to_wide(std::to_string(n)).c_str());
    file.set_value(u"pad", to_wide(std::string(static_cast<std::size_t>(n % 97) * 61, 'x')).c_str());
    file.set_value(u"last", to_wide(std::to_string(n)).c_str());
}

// Killed at any moment, a process loses nothing but the store that it was at, and the next one finds a
// whole file and a free lock.
TEST(Crash, LosesNoMoreThanTheLastStore) {
    seeded_random random(20261121);
    temporary_folder folder(fs::temp_directory_path());
    fs::path const name = folder / "a.ini", backup = folder / "a.ini.backup";
    write_bytes(name, text_file(generation(0)));
    shared_number stored;
    int rounds_with_stores = 0;
    for (int kill = 0; kill < 320; ++kill) {
        SCOPED_TRACE(kill);
        int const before = stored->load();
        child_process writer([&] {
            for (int n = before + 1;; ++n) {
                store_next(to_wide(name.string()), n);
                stored->store(n);
            }
        });
        if (random.coin()) {  // else at the start, where the lock of the one before is taken over
            while (stored->load() == before) std::this_thread::yield();
        }
        std::this_thread::sleep_for(std::chrono::microseconds(random.below(3000)));
        writer.kill();

        int const known = stored->load(), found = generation_of(name);
        ASSERT_GE(found, known);
        ASSERT_LE(found, known + 1);
        int const kept = generation_of(backup);  // the same where the kill came before the new file's turn
        ASSERT_TRUE(kept == found - 1 || kept == found) << kept << " of " << found;
        Configuration file(to_wide(name.string()), true);
        ASSERT_TRUE(file.select_section(u"Count", false));
        stored->store(found);
        rounds_with_stores += found > before;
    }
    EXPECT_GE(rounds_with_stores, 100);  // or the test has tested nothing
}

}  // namespace
}  // namespace tvmath
