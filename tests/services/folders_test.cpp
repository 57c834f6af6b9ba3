#include "tvmath/folders.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <sstream>

#include "services/service_test.h"
#include "tvmath/configuration.h"
#include "tvmath/error_log.h"

inline namespace tvmath {
namespace {

// Names with a bar between them, in the order of their move.
std::vector<std::string> split(std::string const& names) {
    std::vector<std::string> list;
    std::istringstream all(names);
    for (std::string name; std::getline(all, name, '|');) list.push_back(name);
    return list;
}

std::vector<std::string> const common_names =
    split("Torvex.ini|Torvex.sav|users.dat|users.sav|Error.trl|Error.bak|PrinterSettings");
std::vector<std::string> const machine_names = split(
    "Machine.ini|Machine.sav|StageCal.dat|StageCal.sav|StageVer.dat|StageVer.sav|Probes.dat|Probes.sav|_tp."
    "tmp|_tp.sav|"
    "EEPROM Backup.sav|EEPROM Backup.sav0|EEPROM Backup.sav1|EEPROM Backup.sav2|EEPROM Backup.sav3|EEPROM "
    "Backup.sav4|"
    "EEPROM Backup.sav5|EEPROM Backup.sav6|EEPROM Backup.sav7|EEPROM Backup.sav8|EEPROM Backup.sav9|"
    "EEPROM Backup.sav10|MUBackup.ini|MachineLinear.sav|CurveDat.csv|CurveResult.csv|GradientTest.csv|"
    "ConvergenceTest.csv|Singularity.csv|Cov.csv|Calibration.csv|LightsCal.csv|YUVHist.csv|GHist.csv|"
    "LocateInfo0.dat|"
    "LocateInfo1.dat|LocateInfo2.dat|LocateInfo3.dat|LocateInfo4.dat|LocateInfo5.dat|LocateInfo6.dat|"
    "LocateInfo7.dat|LocateInfo8.dat|LocateInfo9.dat|LocateInfo10.dat|focus_image.jpg|Focus Diagnostics.dat|"
    "LightCalLog.txt|Lighting Diagnostic.txt|Touch Probe Cal Diagnostics");

std::string slash(fs::path const& folder) {
    return folder.string() + "/";
}

TEST(Folders, AreWhereTheSettingsSay) {
    installation place;
    fs::create_directory(place.other("shared"));
    struct {
        char const* name;
        std::string folders, subdirectory;
        fs::path config, machine;
    } const cases[] = {
        {"nothing set", "", "", place.common(""), place.common("")},
        {"subfolder", "", "M1\\\\x/", place.common(""), place.common("M1//x/")},
        {"redirected", place.other("shared").string(), "M1", place.other("shared/"),
         place.other("shared/M1/")},
        {"redirected, backslashes", slash(place.other("shared\\")), "", place.other("shared//"),
         place.other("shared//")},
        {"redirected to nowhere", place.other("missing").string(), "", place.common(""), place.common("")},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        write_bytes(place.beside_executable("Folders.ini"),
                    text_file("[Setup]\r\nConfigFolder=" + c.folders));
        EXPECT_TRUE(in_fresh_process([&] {
            EXPECT_EQ(to_utf8(get_executable_folder()), slash(place.other("bin")));
            EXPECT_EQ(to_utf8(get_common_data_folder(true)), place.common("").string());
            wide_string const config = get_config_folder();
            EXPECT_EQ(to_utf8(config), c.config.string());
            write_bytes(fs::path(to_utf8(config)) / "Hardware.ini",
                        text_file("[Machine]\r\nSubDirectory=" + c.subdirectory));
            EXPECT_EQ(to_utf8(get_machine_folder()), c.machine.string());
            write_bytes(place.beside_executable("Folders.ini"), text_file("[Setup]\r\nConfigFolder=/"));
            EXPECT_TRUE(get_config_folder() == config);
        }));
        fs::remove(place.common("Hardware.ini"));
    }
    struct stat status {};
    EXPECT_EQ(::stat(place.common("").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0777u);
}

// The log, which tells of the damage, asks for the folder while it is being read.
TEST(Folders, AreFoundWhenTheirFileIsDamaged) {
    installation place;
    std::string const name = place.beside_executable("Folders.ini").string();
    write_bytes(name, std::string(50, '\0'));
    EXPECT_TRUE(
        in_fresh_process([&] { EXPECT_EQ(to_utf8(get_config_folder()), place.common("").string()); }));
    EXPECT_EQ(log_messages(place.common("error.trl")), name + " is corrupt\r\n");
}

TEST(Folders, OfTheExecutableAreFoundWithoutTheVariable) {
    installation place;
    EXPECT_TRUE(in_fresh_process([&] {
        ::unsetenv("TVMATH_EXECUTABLE_FOLDER");
        EXPECT_TRUE(
            fs::equivalent(to_utf8(get_executable_folder()), fs::canonical("/proc/self/exe").parent_path()));
    }));
}

TEST(Folders, SearchFindsTheFileOfAnOldInstallation) {
    installation place;
    fs::create_directory(place.other("shared"));
    write_bytes(place.beside_executable("Folders.ini"),
                text_file("[Setup]\r\nConfigFolder=" + place.other("shared").string()));
    write_bytes(place.beside_executable("Torvex.ini"), text_file("[S]\r\n"));
    EXPECT_TRUE(in_fresh_process([&] {
        EXPECT_TRUE(TorvexConfig(true).select_section(u"S", false));
        EXPECT_FALSE(TorvexConfig(false).select_section(u"S", false));
        write_bytes(place.other("shared/Torvex.ini"), text_file("[T]\r\n"));
        EXPECT_FALSE(TorvexConfig(true).select_section(u"S", false));
    }));
}

bool move_in_fresh_process() {
    return in_fresh_process([] { EXPECT_TRUE(ensure_settings_moved() && ensure_settings_moved()); });
}

TEST(SettingsMove, CarriesEveryFileOfTheCatalogues) {
    installation place;
    EXPECT_EQ(machine_names.size(), 50u);
    for (auto const& names : {common_names, machine_names}) {
        for (std::string const& name : names) write_bytes(place.beside_executable(name), "old " + name);
    }
    write_bytes(
        place.beside_executable("Machine.ini"),
        text_file("[Setup]\r\nCamera=C9\r\nMachine=Torvex QX-300 b\r\nOther=1\r\nFrame Grabber=\r\n"));
    write_bytes(
        place.beside_executable("Folders.ini"),
        text_file("[Controller Kinds]\r\nZZ=none\r\n=empty\r\nQX=family x\r\nTorvex=last\r\n[Setup]\r\n"));
    fs::create_directory(place.beside_executable("unlisted"));
    fs::permissions(place.beside_executable("users.dat"), fs::perms(0400));
    EXPECT_TRUE(move_in_fresh_process());

    for (std::string const& name : common_names) {
        std::string const own = name == "Error.trl" ? "error.trl" : name == "Error.bak" ? "error.bak" : name;
        EXPECT_EQ(read_bytes(place.common(own)), "old " + name);
        EXPECT_FALSE(fs::exists(place.beside_executable(name)));
        EXPECT_EQ(fs::status(place.common(own)).permissions(), fs::perms(0666)) << name;
    }
    for (std::string const& name : machine_names) {
        EXPECT_FALSE(fs::exists(place.beside_executable(name))) << name;
        if (name == "Machine.ini") continue;
        EXPECT_EQ(read_bytes(place.common("family x/" + name)), "old " + name);
    }
    EXPECT_EQ(read_text(place.common("family x/Machine.ini")), "[Setup]\r\nOther=1\r\nFrame Grabber=\r\n");
    EXPECT_EQ(
        read_text(place.common("Hardware.ini")),
        "\r\n[Setup]\r\nCamera=C9\r\nMachine=Torvex QX-300 b\r\n\r\n[Machine]\r\nSubDirectory=family x\r\n");
    EXPECT_TRUE(fs::exists(place.beside_executable("unlisted")));
    // Nothing of the move itself is left.
    for (auto const& entry : fs::recursive_directory_iterator(place.common(""))) {
        std::string const name = entry.path().filename().string();
        EXPECT_TRUE(!name.ends_with(".moving") && name != "_tmp.ini") << name;
    }

    write_bytes(place.beside_executable("users.sav"), "new");  // a second start does nothing
    fs::remove(place.common("users.sav"));
    EXPECT_TRUE(move_in_fresh_process());
    EXPECT_FALSE(fs::exists(place.common("users.sav")));
}

TEST(SettingsMove, LeavesWhatIsThereAlready) {
    struct {
        char const* name;
        std::string hardware, machine_after;
    } const cases[] = {
        // The model is the new file's: this installation works without a subfolder, and goes on so.
        {"model in Hardware.ini", "[Setup]\r\nMachine=QX\r\n", "[Setup]\r\nMachine=QX 1\r\n"},
        {"empty model", "[Setup]\r\nMachine=\r\n", "[Setup]\r\n"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        installation place;
        write_bytes(place.beside_executable("Folders.ini"), text_file("[Controller Kinds]\r\nQX=x\r\n"));
        write_bytes(place.beside_executable("Machine.ini"), text_file("[Setup]\r\nMachine=QX 1\r\n"));
        write_bytes(place.common("Hardware.ini"), text_file(c.hardware));
        write_bytes(place.beside_executable("USERS.DAT"), "upper case");
        write_bytes(place.beside_executable("users.sav"), "old");
        write_bytes(place.common("Users.Sav"), "there");
        EXPECT_TRUE(move_in_fresh_process());
        bool const keeps_model = c.machine_after.find("QX") != std::string::npos;
        EXPECT_EQ(read_text(place.common(keeps_model ? "Machine.ini" : "x/Machine.ini")), c.machine_after);
        EXPECT_EQ(read_bytes(place.common("users.dat")), "upper case");
        EXPECT_EQ(read_bytes(place.beside_executable("users.sav")), "old");
    }
}

TEST(SettingsMove, DoesNothingWhenTheFolderIsRedirected) {
    installation place;
    fs::create_directory(place.other("shared"));
    write_bytes(place.beside_executable("Folders.ini"),
                text_file("[Setup]\r\nConfigFolder=" + place.other("shared").string()));
    write_bytes(place.beside_executable("Torvex.ini"), "old");
    EXPECT_TRUE(move_in_fresh_process());
    EXPECT_EQ(read_bytes(place.beside_executable("Torvex.ini")), "old");
    EXPECT_TRUE(fs::is_empty(place.other("shared")));
}

// A file that cannot be moved: in a sticky folder, an ordinary user moves only what is his.
TEST(SettingsMove, StopsAtAFailureAndGoesOnAtTheNextStart) {
    installation place;
    if (::geteuid() != 0 || !in_fresh_process([] { EXPECT_TRUE(become_ordinary_user()); })) {
        GTEST_SKIP() << "needs the superuser to give files away";
    }
    auto const give_away = [](fs::path const& name) { ASSERT_EQ(::chown(name.c_str(), 65534, 65534), 0); };
    fs::create_directory(place.other("data"));
    fs::permissions(place.other("data"), fs::perms(0777));
    for (std::string const& name : common_names) write_bytes(place.beside_executable(name), name);
    for (char const* const name : {"Torvex.ini", "Torvex.sav", "users.sav"})
        give_away(place.beside_executable(name));
    fs::permissions(place.beside_executable(""), fs::perms(01777));
    fs::remove(place.beside_executable("Error.trl"));

    auto const start = [&](bool expected) {
        return in_fresh_process([&] {
            become_ordinary_user();
            EXPECT_EQ(ensure_settings_moved(), expected);
        });
    };
    EXPECT_TRUE(start(false));
    EXPECT_EQ(read_bytes(place.common("Torvex.sav")), "Torvex.sav");
    EXPECT_EQ(read_bytes(place.beside_executable("users.sav")), "users.sav");
    EXPECT_EQ(log_messages(place.common("error.trl")),
              "\t" + place.beside_executable("users.dat").string() + " failed to move properly\r\n");

    for (std::string const& name : common_names) {
        if (fs::exists(place.beside_executable(name))) give_away(place.beside_executable(name));
    }
    EXPECT_TRUE(start(true));
    for (char const* const name : {"users.dat", "users.sav", "error.bak", "PrinterSettings"}) {
        EXPECT_TRUE(fs::exists(place.common(name))) << name;
    }
}

}  // namespace
}  // namespace tvmath
