#include "platform/wave_playback.h"

#include <dlfcn.h>
#include <errno.h>
#include <pthread.h>

#include <bit>
#include <chrono>
#include <mutex>
#include <new>
#include <thread>

inline namespace tvmath {
namespace {

using steady = std::chrono::steady_clock;

// The few functions of ALSA that are used, taken from its library at run time, so that a machine without it
// starts too. The types and numbers are those of its stable binary interface, version 0.9 of the symbols.
struct pcm;  // snd_pcm_t
using error_handler = void (*)(char const* file, int line, char const* function, int error,
                               char const* format, ...);

struct alsa_functions {
    int (*open)(pcm**, char const* name, int stream, int mode);
    int (*set_params)(pcm*, int format, int access, unsigned channels, unsigned rate, int resample,
                      unsigned microseconds);
    int (*get_params)(pcm*, unsigned long* buffer_size, unsigned long* period_size);
    long (*writei)(pcm*, void const* samples, unsigned long n);
    int (*wait)(pcm*, int milliseconds);
    int (*state)(pcm*);
    int (*start)(pcm*);
    int (*prepare)(pcm*);
    int (*drain)(pcm*);
    int (*drop)(pcm*);
    int (*close)(pcm*);
    int (*set_error_handler)(error_handler);
};

constexpr int stream_playback = 0, mode_nonblocking = 1, access_interleaved = 3;
constexpr int state_prepared = 2, state_draining = 5;
constexpr int format_16_bit = std::endian::native == std::endian::little ? 2 : 3;

// How far ahead of their time samples are handed over. Also the time for which a sound that is cut off goes
// on.
constexpr unsigned latency_microseconds = 60000;
constexpr int wait_milliseconds = 20;

void no_message(char const*, int, char const*, int, char const*, ...) {}

template <class function>
bool find(void* library, char const* name, function& found) {
    found = reinterpret_cast<function>(::dlsym(library, name));
    return found != nullptr;
}

// Null when the library is missing or is none of ours. It is never unloaded.
alsa_functions const* load_alsa() {
    static alsa_functions f;
    static bool is_loaded = false;
    if (is_loaded) return &f;
    void* const library = ::dlopen("libasound.so.2", RTLD_NOW | RTLD_LOCAL);
    if (!library) return nullptr;
    is_loaded = find(library, "snd_pcm_open", f.open) && find(library, "snd_pcm_set_params", f.set_params) &&
                find(library, "snd_pcm_get_params", f.get_params) &&
                find(library, "snd_pcm_writei", f.writei) && find(library, "snd_pcm_wait", f.wait) &&
                find(library, "snd_pcm_state", f.state) && find(library, "snd_pcm_start", f.start) &&
                find(library, "snd_pcm_prepare", f.prepare) && find(library, "snd_pcm_drain", f.drain) &&
                find(library, "snd_pcm_drop", f.drop) && find(library, "snd_pcm_close", f.close) &&
                find(library, "snd_lib_error_set_handler", f.set_error_handler);
    // ALSA tells standard error of each card that is missing, which is no news to anyone here.
    if (is_loaded) f.set_error_handler(no_message);
    return is_loaded ? &f : nullptr;
}

// Opening and closing hold locks inside ALSA and the loader that a forked child would find taken for ever. So
// a fork waits until they are over, though not without limit: a sound server may hang.
class fork_gate {
public:
    fork_gate() {
        gate.lock();
        is_mine = true;
    }
    fork_gate(fork_gate const&) = delete;
    fork_gate& operator=(fork_gate const&) = delete;
    ~fork_gate() {
        is_mine = false;
        gate.unlock();
    }

private:
    static void shut() {
        is_shut = false;
        if (is_mine) return;  // a client of a sound server starts its server
        for (int tries = 0; tries < 500 && !is_shut; ++tries) {
            is_shut = gate.try_lock();
            if (!is_shut) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    static void reopen_in_parent() {
        if (is_shut) gate.unlock();
    }
    static void reopen_in_child() {
        if (is_shut) {
            gate.unlock();
        } else if (!is_mine) {
            new (&gate) std::mutex;  // held by a thread that is not there
        }
    }

    static inline std::mutex gate;
    static inline thread_local bool is_mine = false;  // this thread opens or closes
    static inline thread_local bool is_shut = false;  // this thread forks and holds the gate for it
    static inline int const is_registered = ::pthread_atfork(shut, reopen_in_parent, reopen_in_child);
};

}  // namespace

struct sound_card::connection {
    alsa_functions const* alsa = nullptr;
    pcm* handle = nullptr;
    std::chrono::microseconds buffer_time{};
    bool is_draining = false;
    steady::time_point drained_at_latest;

    bool open(char const* name, int rate);
    void close();
};

bool sound_card::connection::open(char const* name, int rate) {
    if (alsa->open(&handle, name, stream_playback, mode_nonblocking) < 0) {
        handle = nullptr;
        return false;
    }
    unsigned long buffer_size = 0, period_size = 0;
    if (alsa->set_params(handle, format_16_bit, access_interleaved, 1, static_cast<unsigned>(rate), 1,
                         latency_microseconds) < 0 ||
        alsa->get_params(handle, &buffer_size, &period_size) < 0) {
        close();
        return false;
    }
    buffer_time = std::chrono::microseconds(buffer_size * 1000000 / static_cast<unsigned long>(rate));
    is_draining = false;
    return true;
}

void sound_card::connection::close() {
    if (!handle) return;
    alsa->drop(handle);  // closing alone would wait until all has been played
    alsa->close(handle);
    handle = nullptr;
}

sound_card::sound_card() : connection_(std::make_unique<connection>()) {}

sound_card::~sound_card() {
    close();
}

bool sound_card::is_open() const {
    return connection_->handle != nullptr;
}

bool sound_card::open(int rate) {
    if (is_open()) return true;
    fork_gate const gate;
    connection_->alsa = load_alsa();
    if (!connection_->alsa) return false;
    // A default that somebody has set to bare hardware may know neither one channel nor this rate.
    return connection_->open("default", rate) || connection_->open("plug:default", rate);
}

std::ptrdiff_t sound_card::write(std::span<std::int16_t const> samples) {
    alsa_functions const& alsa = *connection_->alsa;
    pcm* const handle = connection_->handle;
    long const written = alsa.writei(handle, samples.data(), samples.size());
    if (written >= 0) return written;
    if (written == -EAGAIN || written == -EINTR) {
        if (alsa.state(handle) == state_prepared) alsa.start(handle);
        alsa.wait(handle, wait_milliseconds);
        return 0;
    }
    // The card ran out of samples, or the machine slept.
    bool const may_recover = written == -EPIPE || written == -ESTRPIPE;
    if (may_recover && alsa.prepare(handle) >= 0) return 0;
    close();
    return -1;
}

bool sound_card::is_played_out() {
    alsa_functions const& alsa = *connection_->alsa;
    pcm* const handle = connection_->handle;
    if (!connection_->is_draining) {
        connection_->is_draining = true;
        connection_->drained_at_latest =
            steady::now() + connection_->buffer_time + std::chrono::milliseconds(200);
        // A sound shorter than the buffer has not started by itself.
        if (alsa.state(handle) == state_prepared) alsa.start(handle);
    }
    // Some drivers tell by the result that draining goes on, others by the state alone, after a new call.
    if (alsa.drain(handle) == -EAGAIN && alsa.state(handle) == state_draining &&
        steady::now() < connection_->drained_at_latest) {
        return false;
    }
    connection_->is_draining = false;
    alsa.drop(handle);
    if (alsa.prepare(handle) < 0) close();
    return true;
}

void sound_card::close() {
    if (!is_open()) return;
    fork_gate const gate;
    connection_->close();
}

}  // namespace tvmath
