#include "services/folders_catalogue.h"

inline namespace tvmath {

namespace {

// name0suffix to name10suffix.
void add_numbered(std::vector<std::string>& names, std::string const& name, std::string const& suffix) {
    for (int i = 0; i <= 10; ++i) names.push_back(name + std::to_string(i) + suffix);
}

}  // namespace

std::vector<std::string> common_files_of_old_installation() {
    return {"Torvex.ini", "Torvex.sav", "users.dat",      "users.sav",
            "Error.trl",  "Error.bak",  "PrinterSettings"};
}

std::vector<std::string> machine_files_of_old_installation() {
    std::vector<std::string> names = {
        "Machine.ini", "Machine.sav", "StageCal.dat", "StageCal.sav", "StageVer.dat",      "StageVer.sav",
        "Probes.dat",  "Probes.sav",  "_tp.tmp",      "_tp.sav",      "EEPROM Backup.sav",
    };
    add_numbered(names, "EEPROM Backup.sav", "");
    for (char const* const name : {"MUBackup.ini", "MachineLinear.sav", "CurveDat.csv", "CurveResult.csv",
                                   "GradientTest.csv", "ConvergenceTest.csv", "Singularity.csv", "Cov.csv",
                                   "Calibration.csv", "LightsCal.csv", "YUVHist.csv", "GHist.csv"}) {
        names.emplace_back(name);
    }
    add_numbered(names, "LocateInfo", ".dat");
    for (char const* const name : {"focus_image.jpg", "Focus Diagnostics.dat", "LightCalLog.txt",
                                   "Lighting Diagnostic.txt", "Touch Probe Cal Diagnostics"}) {
        names.emplace_back(name);
    }
    return names;
}

}  // namespace tvmath
