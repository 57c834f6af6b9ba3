#include "tvmath/audio.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <numbers>
#include <numeric>
#include <semaphore>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "services/audio_queue.h"
#include "services/audio_wave.h"
#include "tvmath/configuration.h"

inline namespace tvmath {
namespace {

namespace fs = std::filesystem;

// The fresh process of a test: carries out its arguments in order, each a letter and a number or a text.
int carry_out(int n, char** commands) {
    for (int i = 0; i < n; ++i) {
        char const letter = commands[i][0];
        std::string const text = commands[i] + 1;
        int const number = std::atoi(text.c_str());
        if (letter == 'd') Audio::set_audio_device(static_cast<Audio::AudioDevice>(number));
        if (letter == 'g') std::cout << Audio::get_audio_device() << '\n';
        if (letter == 'p') Audio::FeedbackSound(static_cast<Audio::SoundType>(number));
        if (letter == 'b') {  // in the background, until the process ends
            std::thread([] {
                while (true) Audio::FeedbackSound(Audio::high_tone);
            }).detach();
        }
        if (letter == 's') std::this_thread::sleep_for(std::chrono::milliseconds(number));
        if (letter == 't') std::cout << std::distance(fs::directory_iterator("/proc/self/task"), {}) << '\n';
        if (letter == 'r' || letter == 'w') {  // reads and writes the settings behind the sound's back
            TorvexConfig settings(false);
            settings.select_section(u"Audio", true);
            if (letter == 'w') settings.set_value(u"Device", to_wide(text).c_str());
            if (letter == 'r') std::cout << to_utf8(settings.get_or_add_value(u"Device", u"missing")) << '\n';
        }
        if (letter == 'f') {  // a child carries out the next `number` of them while the parent waits for it
            int status = 0;
            pid_t const child = ::fork();
            if (child == 0) n = i + 1 + number;
            if (child != 0 && (::waitpid(child, &status, 0) != child || status != 0)) return 1;
            if (child != 0) i += number;
        }
    }
    return 0;
}

class AudioProcess : public testing::Test {
protected:
    void SetUp() override {
        std::string const name = testing::UnitTest::GetInstance()->current_test_info()->name();
        folder_ = fs::path(testing::TempDir()) / ("tvmath_audio_" + name + std::to_string(::getpid()));
        start_anew();
    }
    void TearDown() override { fs::remove_all(folder_); }

    void start_anew() {
        fs::remove_all(folder_);
        fs::create_directories(folder_);
        write("asoundrc",
              "pcm.silent { type null }\n"
              "pcm.!default { type file slave.pcm silent format wav truncate false file \"" +
                  path("sound") + "\" }\n");
        speaker = "";
        card = path("asoundrc");
    }
    std::string path(std::string const& name) const { return (folder_ / name).string(); }
    void write(std::string const& name, std::string const& text) { std::ofstream(path(name)) << text; }
    std::string contents(std::string const& name) const {
        std::ifstream in(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    // True when a fresh process that carries out `commands` ended well and in time. Leaves its texts in out
    // and err.
    bool succeeds(std::string const& commands) {
        std::string const self = fs::read_symlink("/proc/self/exe").string();
        // What a thread of the parent held when it forked is lost in the child, and no fault.
        std::string const leaks =
            commands.find('f') == std::string::npos ? "" : "ASAN_OPTIONS=detect_leaks=0 ";
        std::string const command =
            leaks + "TVMATH_COMMON_DATA='" + path("") + "' TVMATH_EXECUTABLE_FOLDER='" + path("") +
            "' TVMATH_TONE_DEVICE='" + speaker + "' ALSA_CONFIG_PATH='" + card + "' timeout -s KILL 30 '" +
            self + "' --carry-out " + commands + " > '" + path("out") + "' 2> '" + path("err") + "'";
        bool const ended_well = std::system(command.c_str()) == 0;
        out = contents("out");
        err = contents("err");
        return ended_well;
    }

    // Samples of all sound files, one file after the other.
    std::vector<double> samples() const {
        std::vector<double> all;
        for (auto const& entry : fs::directory_iterator(folder_)) {
            std::string const name = entry.path().filename().string();
            if (!name.starts_with("sound")) continue;
            std::string const file = contents(name);
            if (file.size() < 44) continue;  // the header
            EXPECT_EQ(file.substr(22, 6),
                      std::string("\1\0\x80\xBB\0\0", 6));  // 1 channel, 48000 samples per second
            std::vector<std::int16_t> read((file.size() - 44) / 2);
            file.copy(reinterpret_cast<char*>(read.data()), read.size() * 2, 44);
            all.insert(all.end(), read.begin(), read.end());
        }
        return all;
    }

    std::string out, err, speaker, card;

private:
    fs::path folder_;
};

class AudioOnCard : public AudioProcess {
protected:
    void SetUp() override {
        AudioProcess::SetUp();
        if (!::dlopen("libasound.so.2", RTLD_NOW)) GTEST_SKIP() << "libasound2 is not installed";
    }
};
// The frequency of the largest discrete Fourier sum.
int dominant_frequency(std::span<double const> sound) {
    int best = 0;
    double most = 0;
    for (int hertz = 100; hertz <= 2200; hertz += 4) {
        std::complex<double> sum;
        for (std::size_t i = 0; i < sound.size(); ++i) {
            sum += std::polar(sound[i], 2 * std::numbers::pi * hertz * static_cast<double>(i) / 48000);
        }
        if (std::norm(sum) > most) most = std::norm(sum), best = hertz;
    }
    return best;
}

double energy(std::vector<double> const& sound) {
    return std::inner_product(sound.begin(), sound.end(), sound.begin(), 0.0);
}

struct sound_case {
    int type, milliseconds, hertz, second_hertz;
};
constexpr sound_case sound_cases[] = {
    {0, 40, 384, 0},    {1, 40, 512, 0}, {2, 80, 256, 0},  {3, 100, 512, 1024},
    {4, 100, 384, 256}, {7, 40, 512, 0}, {-1, 40, 512, 0},
};

// The sound has its tones and length, can be heard, and neither starts, changes nor ends with a click.
void expect_sound(std::vector<double> const& sound, sound_case const& expected) {
    bool const has_second = expected.second_hertz != 0;
    auto const length = static_cast<std::size_t>(expected.milliseconds) * 48;
    ASSERT_EQ(sound.size(), has_second ? 2 * length : length);
    // A tone of 40 ms and its mirror image at negative frequencies disturb each other by a hertz or two.
    std::span<double const> const all(sound);
    EXPECT_NEAR(dominant_frequency(all.first(length)), expected.hertz, 4);
    EXPECT_NEAR(dominant_frequency(all.last(length)), has_second ? expected.second_hertz : expected.hertz, 4);
    double const loudest = *std::max_element(sound.begin(), sound.end());
    EXPECT_GT(loudest, 3000);
    double jump = std::max(std::abs(sound.front()), std::abs(sound.back()));
    for (std::size_t i = 1; i < sound.size(); ++i) jump = std::max(jump, std::abs(sound[i] - sound[i - 1]));
    // The steepest part of a sine.
    double const slope = 2 * std::numbers::pi * std::max(expected.hertz, expected.second_hertz) / 48000;
    EXPECT_LT(jump, 1.05 * slope * loudest);
}

TEST_F(AudioOnCard, HasTheTonesAndLengthsOfTheTableAndStandsInForAMissingSpeaker) {
    for (std::string const device : {"d3", "d2"}) {
        for (sound_case const& c : sound_cases) {
            SCOPED_TRACE(device + " sound " + std::to_string(c.type));
            start_anew();
            ASSERT_TRUE(succeeds(device + " p" + std::to_string(c.type) + " s500")) << err;
            EXPECT_EQ(err, "");
            if (device == "d3" && (c.type < 0 || c.type > 4)) {
                EXPECT_TRUE(samples().empty());  // a tone, but no wave
            } else {
                expect_sound(samples(), c);
            }
        }
    }
}

TEST_F(AudioOnCard, CutsOffTheSoundBeforeButPlaysTonesInTurn) {
    ASSERT_TRUE(succeeds("d3 p3 s50 p0 s500"));
    auto const cut = samples();
    EXPECT_LT(cut.size(), 200u * 48);
    EXPECT_NEAR(dominant_frequency(std::span(cut).last(40 * 48)), 384, 4);
    start_anew();
    ASSERT_TRUE(succeeds("d2 p3 s50 p0 s600"));
    EXPECT_EQ(samples().size(), 240u * 48);
}

TEST_F(AudioOnCard, PlaysWaveAndToneWithBothDevices) {
    ASSERT_TRUE(succeeds("d3 p1 s400"));
    double const single = energy(samples());
    start_anew();
    // 4 times the energy when they start together; twice when a busy machine parts them.
    ASSERT_TRUE(succeeds("d4 p1 s400"));
    EXPECT_GT(energy(samples()), 1.5 * single);
    // With a speaker the tone goes there and the wave to the card.
    start_anew();
    speaker = path("speaker");
    ASSERT_EQ(::mkfifo(speaker.c_str(), 0600), 0);
    int const events = ::open(speaker.c_str(), O_RDWR | O_NONBLOCK);
    ASSERT_TRUE(succeeds("d4 p3 s600"));
    expect_sound(samples(), sound_cases[3]);
    std::vector<int> values;
    for (input_event event; ::read(events, &event, sizeof event) == sizeof event;) {
        EXPECT_TRUE(event.type == EV_SND && event.code == SND_TONE);
        values.push_back(event.value);
    }
    ::close(events);
    EXPECT_EQ(values, (std::vector<int>{512, 0, 1024, 0}));
}

// The tones keep their time although the card takes them at once: else all would find room in the queue.
TEST_F(AudioOnCard, DropsTonesBeyondFiveWaiting) {
    std::string commands = "d2 p3 s30";
    for (int i = 0; i < 10; ++i) commands += " p3 s5";
    ASSERT_TRUE(succeeds(commands + " s1800"));
    EXPECT_EQ(err, "");
    EXPECT_EQ(samples().size(), 6u * 200 * 48);
}

TEST_F(AudioOnCard, PlaysInAForkedChildToo) {
    // The parent's threads, which the child does not have, are idle, opening the card, or playing.
    std::vector<std::string> parents = {"d2 p1 s400", "d3 p1 s400"};
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "ThreadSanitizer takes a thread that the child starts for one of its parent's";
#elif !defined(__SANITIZE_ADDRESS__)  // whose allocator does not survive a fork beside busy threads
    for (std::string const delay : {"0", "1", "2", "4", "8", "20"}) {
        for (std::string const device : {"d2", "d3"}) parents.push_back(device + " p1 s" + delay);
    }
#endif
    for (std::string const& parent : parents) {
        SCOPED_TRACE(parent);
        start_anew();
        EXPECT_TRUE(succeeds(parent + " f2 p1 s300")) << err;
        EXPECT_EQ(samples().size(), 2u * 40 * 48);
    }
}

TEST_F(AudioOnCard, EndsInTimeWhileItPlaysAndWhenTheCardHangs) {
    EXPECT_TRUE(succeeds("wInt+Ext b b b s50")) << err;
    for (std::string const device : {"d1", "d2", "d3", "d4"}) {
        EXPECT_TRUE(succeeds(device + " p3 p3 p3")) << err;  // at once
        EXPECT_TRUE(succeeds(device + " p3 p3 s70")) << err;
        EXPECT_TRUE(succeeds(device + " p4 s70 f0")) << err;  // a child that ends without a sound of its own
    }
    start_anew();
    ASSERT_TRUE(succeeds("d2 p3 s70 p3 p3 p3"));
    EXPECT_GE(samples().size(), 200u * 48);  // the sound at hand is played out
    EXPECT_LE(samples().size(), 400u * 48);  // and those that wait are dropped
    // Opening waits for a reader that never comes, as with a sound server that hangs.
    write("hanging",
          "pcm.silent { type null }\npcm.!default { type file slave.pcm silent format raw file \"" +
              path("fifo") + "\" }\n");
    ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0600), 0);
    card = path("hanging");
    EXPECT_TRUE(succeeds("d4 p3 s50 p2"));
    EXPECT_EQ(err, "");
    EXPECT_TRUE(succeeds("d3 p3 s50 f0"));
}

TEST_F(AudioProcess, IsReadFromTheSettingsAndAnUnknownOneBecomesTheSpeaker) {
    struct {
        std::string commands, out;
    } const cases[] = {
        {"g r", "2\nInt\n"},        {"wNone g r", "1\nNone\n"},        {"wint g r", "2\nint\n"},
        {"wEXT g r", "3\nEXT\n"},   {"wInt+eXt g r", "4\nInt+eXt\n"},  {"wLoud g r", "2\nInt\n"},
        {"wInt+ g r", "2\nInt\n"},  {"wNone g wExt g", "1\n1\n"},  // kept
        {"d4 r g", "Int+Ext\n4\n"}, {"d3 r d1 r g", "Ext\nNone\n1\n"}, {"d9 r g", "Int\n2\n"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.commands);
        start_anew();
        EXPECT_TRUE(succeeds(c.commands));
        EXPECT_EQ(out, c.out);
    }
}

TEST_F(AudioProcess, NoneStartsNoThreadAndAMissingCardSaysNothing) {
    // A sanitizer may have a thread of its own, so processes are compared.
    ASSERT_TRUE(succeeds("d1 t p0 p3 p9 t"));
    EXPECT_EQ(out.substr(0, out.find('\n')), out.substr(out.find('\n') + 1, out.find('\n')));
    for (std::string const text : {"pcm.!default { type hw card 99 }\n", "nonsense {", ""}) {
        SCOPED_TRACE(text);
        write("asoundrc", text);
        if (text.empty()) card = path("missing");
        EXPECT_TRUE(succeeds("d4 p0 p3 s100 p4 s100 p7"));
        EXPECT_EQ(err, "");
    }
}

TEST(ToneQueue, TakesFiveWhileOneSoundsAndKeepsTheirOrder) {
    std::counting_semaphore<100> may_sound(0), sounding(0);
    std::vector<int> heard;
    tone_queue queue([&](tone_request const& tones) {
        sounding.release();
        may_sound.acquire();
        heard.push_back(tones.hertz);
    });
    int next = 0;
    for (int round = 0; round < 3; ++round) {  // each round starts at another place of the ring
        EXPECT_TRUE(queue.put({next++, 1, 0}));
        sounding.acquire();
        for (int i = 0; i < 5; ++i) EXPECT_TRUE(queue.put({next++, 1, 0}));
        EXPECT_FALSE(queue.put({-1, 1, 0}));
        may_sound.release(6);
        for (int i = 0; i < 5; ++i) sounding.acquire();
    }
    queue.end();
    EXPECT_FALSE(queue.put({-1, 1, 0}));
    std::vector<int> expected(18);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(heard, expected);
}

TEST(ToneQueue, SoundsOnceWhatAnyThreadPuts) {
    std::vector<int> heard;
    std::atomic<int> taken = 0, sounded = 0;
    {
        tone_queue queue([&](tone_request const& tones) {
            heard.push_back(tones.hertz);
            ++sounded;
        });
        std::vector<std::jthread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([&, t] {
                for (int i = 0; i < 2000; ++i) taken += queue.put({t * 2000 + i, 0, 0});
            });
        }
        threads.clear();
        while (sounded < taken) std::this_thread::yield();
    }
    EXPECT_EQ(static_cast<int>(heard.size()), taken.load());
    std::sort(heard.begin(), heard.end());
    EXPECT_EQ(std::adjacent_find(heard.begin(), heard.end()), heard.end());
}

TEST(WaveMixer, AddsVoicesAndFadesOutWhatItCutsOff) {
    auto const level = [](std::size_t n, std::int16_t value) {
        return std::make_shared<wave const>(wave(n, value));
    };
    wave_mixer mixer;
    std::vector<std::int16_t> out(5000);
    mixer.cut_to(level(100, 30000));
    mixer.append(level(50, 20000));
    mixer.append(level(100, -1000));
    ASSERT_EQ(mixer.mix(out), 150u);
    EXPECT_EQ(out[0], 32767);  // 50000 does not fit
    EXPECT_EQ(out[50], 29000);
    EXPECT_EQ(out[100], -1000);

    mixer.cut_to(level(4000, 10000));
    ASSERT_EQ(mixer.mix({out.data(), 500}), 500u);
    mixer.cut_to(nullptr);
    std::size_t const fade = mixer.mix(out);
    EXPECT_EQ(fade, 240u);  // 5 ms
    // A raised cosine over n samples is steepest in its middle: pi / (2 n) of its height.
    int before = 10000;
    for (std::size_t i = 0; i < fade; before = out[i++]) {
        EXPECT_LE(out[i], before);
        EXPECT_LE(before - out[i], 10000 * std::numbers::pi / (2 * 240) + 1);
    }
    EXPECT_LE(before, 1);
}

}  // namespace
}  // namespace tvmath

int main(int argc, char** argv) {
    if (argc > 1 && std::string(argv[1]) == "--carry-out") return carry_out(argc - 2, argv + 2);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
