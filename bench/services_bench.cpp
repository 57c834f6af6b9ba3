#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tvmath/configuration.h"
#include "tvmath/error_log.h"
#include "tvmath/feature_switches.h"

inline namespace tvmath {
namespace {

namespace fs = std::filesystem;

// An installation in a folder of its own: on the disk, where a store waits for the disk, or in memory, where
// the library's own time shows.
class installation {
public:
    installation() : folder_(fs::temp_directory_path() / "tvmath_services_bench") {
        fs::create_directories(folder_ / "bin");
        ::setenv("TVMATH_EXECUTABLE_FOLDER", (folder_ / "bin").c_str(), 1);
        ::setenv("TVMATH_COMMON_DATA", (folder_ / "data").c_str(), 1);
    }
    ~installation() {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    std::string folder() const { return folder_.string(); }

private:
    fs::path folder_;
};

installation place;

// 200 lines: 10 sections of 19 keys.
wide_string settings_file(fs::path const& folder) {
    std::string text;
    for (int section = 0; section < 10; ++section) {
        text += "[Section " + std::to_string(section) + "]\r\n";
        for (int key = 0; key < 19; ++key)
            text += "Key " + std::to_string(key) + "=some value of usual length\r\n";
    }
    std::string bytes = "\xFF\xFE";
    for (char const c : text) bytes.append({c, '\0'});
    fs::path const name = folder / "tvmath_services_bench.ini";
    std::ofstream(name, std::ios::binary) << bytes;
    return to_wide(name.string());
}

// The last key of the last section.
void read_one_key(benchmark::State& state) {
    wide_string const name = settings_file(place.folder());
    wide_string value;
    for (auto _ : state) {
        Configuration file(name, true);
        if (!file.select_section(u"Section 9", false) || !file.get_value(u"Key 18", value)) {
            state.SkipWithError("no value");
        }
    }
}

void set_and_store(benchmark::State& state, std::string const& folder) {
    wide_string const name = settings_file(folder);
    int n = 0;
    for (auto _ : state) {
        Configuration file(name, true);
        file.select_section(u"Section 9", false);
        file.set_value(u"Key 18", to_wide(std::to_string(++n)).c_str());
    }
    for (char const* const end : {"", ".backup"}) fs::remove(to_utf8(name) + end);
}

void log_one_entry(benchmark::State& state) {
    for (auto _ : state)
        error_log_entry("services_bench.cpp", __LINE__)(u"%d of %s\r\n", 7, u"what was measured");
}

void call_switch(benchmark::State& state) {
    benchmark::DoNotOptimize(new_vision_algorithms_enabled());
    for (auto _ : state) benchmark::DoNotOptimize(new_vision_algorithms_enabled());
}

BENCHMARK(read_one_key)->Name("services_read_one_key/tvmath");
BENCHMARK_CAPTURE(set_and_store, disk, place.folder())
    ->Name("services_set_and_store_on_disk/tvmath")
    ->UseRealTime();
BENCHMARK_CAPTURE(set_and_store, memory, "/dev/shm")
    ->Name("services_set_and_store_in_memory/tvmath")
    ->UseRealTime();
BENCHMARK(log_one_entry)->Name("services_log_entry/tvmath");
BENCHMARK(call_switch)->Name("services_switch/tvmath");

}  // namespace
}  // namespace tvmath
