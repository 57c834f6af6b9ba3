#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

inline namespace tvmath {

/// The sound card: takes samples of one channel a little ahead of their time. Belongs to one thread. No call
/// waits for longer than a few hundredths of a second, except that opening and closing may talk to a sound
/// server.
class sound_card {
public:
    sound_card();
    sound_card(sound_card const&) = delete;
    sound_card& operator=(sound_card const&) = delete;
    ~sound_card();

    bool is_open() const;

    /// Opens the default card for `rate` samples per second, if it is not open yet. Returns false, without a
    /// message anywhere, when there is none.
    bool open(int rate);

    /// Hands over the first of `samples`, which is not empty, and returns how many. 0: there was no room; the
    /// call has waited a moment for it. Negative: the card has gone away and is closed.
    std::ptrdiff_t write(std::span<std::int16_t const> samples);

    /// True when all that was handed over has been heard; the card is then ready for more. To be asked again
    /// every few milliseconds until it is true, and before the next `write`.
    bool is_played_out();

    /// Closes the card at once, whatever it still has to play.
    void close();

private:
    struct connection;
    std::unique_ptr<connection> connection_;
};

}  // namespace tvmath
