#include "platform/tone.h"

#include <fcntl.h>
#include <linux/input.h>
#include <stdlib.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <thread>

inline namespace tvmath {
namespace {

// The kernel publishes a mask of the sounds that an input device makes. Reading it there spares opening every
// mouse and touch screen, which would wake them up.
bool makes_tones(std::filesystem::path const& event_entry) {
    std::ifstream file(event_entry / "device/capabilities/snd");
    unsigned long sounds = 0;
    return file >> std::hex >> sounds && (sounds >> SND_TONE & 1) != 0;
}

std::string speaker_path() {
    if (char const* named = ::secure_getenv("TVMATH_TONE_DEVICE")) return named;
    std::error_code failed;
    std::filesystem::directory_iterator entry("/sys/class/input", failed);
    for (; !failed && entry != std::filesystem::directory_iterator(); entry.increment(failed)) {
        std::string const name = entry->path().filename().string();
        if (name.starts_with("event") && makes_tones(entry->path())) return "/dev/input/" + name;
    }
    return {};
}

bool set_tone(int device, int hertz) {
    input_event event{};
    event.type = EV_SND;
    event.code = SND_TONE;
    event.value = hertz;  // 0 is silence
    return ::write(device, &event, sizeof event) == static_cast<ssize_t>(sizeof event);
}

}  // namespace

bool sound_tone(int hertz, int milliseconds) {
    // Looked up for each tone: it costs far less than the tone lasts, and speakers may come and go.
    std::string const path = speaker_path();
    if (path.empty()) return false;
    int const device = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    if (device < 0) return false;
    bool const sounding = set_tone(device, hertz);
    if (sounding) {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        set_tone(device, 0);
    }
    ::close(device);
    return sounding;
}

}  // namespace tvmath
