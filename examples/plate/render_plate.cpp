// Renders the pictures of the demo and writes the jobs that measure them into one folder:
//     render_plate FOLDER
// The chart that calibrates the lens: grid.png, grid.json, and grid_nominal.csv, where its dots truly lie.
// A machined plate before a bright screen: plate.png, plate.json. The same in a photograph: photo.png,
// photo.json: both against the drawing. The same against the plate as it was made: plate_true.json and
// photo_true.json.

#include <files/png_file.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "jobs.h"
#include "plate_drawing.h"
#include "scenes.h"

namespace {

bool write(std::filesystem::path const& name, std::string const& bytes) {
    if (bytes.empty()) {
        std::fprintf(stderr, "render_plate: no PNG for %s\n", name.c_str());
        return false;
    }
    std::ofstream file(name, std::ios::binary);
    file << bytes;
    if (file.flush()) return true;
    std::fprintf(stderr, "render_plate: %s cannot be written\n", name.c_str());
    return false;
}

bool write_all(std::filesystem::path const& folder) {
    std::error_code failed;  // said by the first file
    std::filesystem::create_directories(folder, failed);
    plate::plate_picture const backlit{true, false, 0.002, 0.006, 0.006, 0.1},
        photograph{false, false, 0.004, 0.015, 0.02, 0.2}, true_backlit{true, true, 0.0003, 0, 0, 0.005},
        true_photograph{false, true, 0.002, 0, 0, 0.05};
    return write(folder / "grid.png", png_bytes(plate::chart_on_backlight(), 16)) &&
           write(folder / "grid.json", plate::chart_job()) &&
           write(folder / "grid_nominal.csv", plate::chart_nominal()) &&
           write(folder / "plate.png", png_bytes(plate::plate_on_backlight(), 16)) &&
           write(folder / "plate.json", plate::plate_job(backlit)) &&
           write(folder / "photo.png", png_bytes(plate::plate_in_a_photograph(), 8)) &&
           write(folder / "photo.json", plate::plate_job(photograph)) &&
           write(folder / "plate_true.json", plate::plate_job(true_backlit)) &&
           write(folder / "photo_true.json", plate::plate_job(true_photograph));
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc == 2) return write_all(argv[1]) ? EXIT_SUCCESS : EXIT_FAILURE;
        std::fputs("usage: render_plate FOLDER\n", stderr);
    } catch (std::exception const& e) {
        std::fprintf(stderr, "render_plate: %s\n", e.what());
    }
    return EXIT_FAILURE;
}
