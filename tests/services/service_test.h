#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include "tvmath/wide_string.h"

inline namespace tvmath {

namespace fs = std::filesystem;

/// A process that runs `work`, whose expectations are those of the test. What the library keeps for the life
/// of a process starts anew in it, so the test's own process must not touch that.
class child_process {
public:
    explicit child_process(std::function<void()> const& work) : id_(::fork()) {
        if (id_ != 0) return;
        int const failures_before = failures();
        work();
        std::fflush(nullptr);
        ::_exit(failures() == failures_before ? 0 : 1);
    }
    child_process(child_process const&) = delete;
    child_process& operator=(child_process const&) = delete;
    ~child_process() {
        if (id_ > 0) kill();
    }

    /// Ends it at once, wherever it is.
    void kill() {
        ::kill(id_, SIGKILL);
        succeeded();
    }
    bool has_ended() const {
        siginfo_t state{};
        return ::waitid(P_PID, static_cast<id_t>(id_), &state, WEXITED | WNOHANG | WNOWAIT) == 0 &&
               state.si_pid != 0;
    }
    /// Waits for its end. True when all its expectations held.
    bool succeeded() {
        int status = 0;
        bool const ended = ::waitpid(id_, &status, 0) == id_;
        id_ = 0;
        return ended && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

private:
    static int failures() {
        testing::TestResult const& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
        int count = 0;
        for (int i = 0; i < result.total_part_count(); ++i) count += result.GetTestPartResult(i).failed();
        return count;
    }

    pid_t id_;
};

inline bool in_fresh_process(std::function<void()> const& work) {
    return child_process(work).succeeded();
}

/// A number that the test and its child processes share.
class shared_number {
public:
    shared_number()
        : number_(::new (::mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE,
                                MAP_SHARED | MAP_ANONYMOUS, -1, 0)) std::atomic<int>(0)) {}
    shared_number(shared_number const&) = delete;
    shared_number& operator=(shared_number const&) = delete;
    ~shared_number() { ::munmap(number_, sizeof(std::atomic<int>)); }
    std::atomic<int>* operator->() const { return number_; }
    std::atomic<int>& operator*() const { return *number_; }

private:
    std::atomic<int>* number_;
};

/// Where a flush to disk costs nothing, if there is such a place.
inline fs::path fast_folder() {
    return ::access("/dev/shm", W_OK) == 0 ? fs::path("/dev/shm") : fs::temp_directory_path();
}

/// A folder that goes with the test, and with it the locks of the files in it.
class temporary_folder {
public:
    explicit temporary_folder(fs::path const& place = fast_folder()) {
        std::string name = (place / "tvmath_XXXXXX").string();
        if (::mkdtemp(name.data())) path_ = name;
        fs::permissions(path_, fs::perms(0755));
    }
    temporary_folder(temporary_folder const&) = delete;
    temporary_folder& operator=(temporary_folder const&) = delete;
    ~temporary_folder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
        for (auto const& entry : fs::directory_iterator("/dev/shm", ignored)) {
            std::string const name = entry.path().filename().string();
            if (name.find(path_.filename().string()) != std::string::npos) fs::remove(entry.path(), ignored);
        }
    }

    fs::path operator/(std::string const& name) const { return path_ / name; }

private:
    fs::path path_;
};

/// An installation in a temporary folder, for the test and its children.
class installation {
public:
    installation() {
        fs::create_directory(folder_ / "bin");
        ::setenv("TVMATH_EXECUTABLE_FOLDER", (folder_ / "bin").c_str(), 1);
        ::setenv("TVMATH_COMMON_DATA", (folder_ / "data").c_str(), 1);
    }
    fs::path beside_executable(std::string const& name) const { return folder_ / "bin" / name; }
    fs::path common(std::string const& name) const {
        return folder_ / "data" / "Kelvane Corporation" / "Torvex for Windows" / name;
    }
    fs::path other(std::string const& name) const { return folder_ / name; }

private:
    temporary_folder folder_;
};

inline std::string read_bytes(fs::path const& name) {
    std::ifstream file(name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

inline void write_bytes(fs::path const& name, std::string const& bytes) {
    fs::create_directories(name.parent_path());
    std::ofstream(name, std::ios::binary) << bytes;
}

/// The bytes of a text file: the mark, then UTF-16 little endian.
inline std::string text_file(std::string const& ascii) {
    std::string bytes = "\xFF\xFE";
    for (char const c : ascii) bytes.append({c, '\0'});
    return bytes;
}

/// The text of such a file; what is no such file shows as that.
inline std::string read_text(fs::path const& name) {
    std::string const bytes = read_bytes(name);
    if (bytes.empty()) return fs::exists(name) ? "" : "(no file)";
    if (!bytes.starts_with("\xFF\xFE") || bytes.size() % 2 != 0) return "(no text file)";
    wide_string text;
    for (std::size_t i = 2; i < bytes.size(); i += 2) {
        text += static_cast<wide_char>(static_cast<unsigned char>(bytes[i]) |
                                       static_cast<unsigned char>(bytes[i + 1]) << 8);
    }
    return to_utf8(text);
}

/// The messages of a log without their prefixes, a line each.
inline std::string log_messages(fs::path const& log) {
    std::string messages, text = read_text(log);
    for (std::size_t at = 0; at < text.size();) {
        std::size_t const end = std::min(text.find('\n', at), text.size() - 1);
        std::string const line = text.substr(at, end + 1 - at);
        std::size_t const start = line.find("): ");
        messages += start == std::string::npos ? line : line.substr(start + 3);
        at = end + 1;
    }
    return messages;
}

/// Gives up the rights of the superuser, whom no mode of a file stops. For a child process. False if it
/// cannot.
inline bool become_ordinary_user() {
    return ::geteuid() != 0 || (::setgid(65534) == 0 && ::setuid(65534) == 0);
}

}  // namespace tvmath
