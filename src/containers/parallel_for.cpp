#include "containers/parallel_for.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

inline namespace tvmath {
namespace {

std::atomic<unsigned int> most_threads{0};

std::size_t threads_for(std::size_t pieces) {
    if (pieces < 4) return 1;
    unsigned int const most = most_threads.load(std::memory_order_relaxed);
    return std::min<std::size_t>(pieces / 2, std::max(1u, most ? most : std::thread::hardware_concurrency()));
}

// Pieces are handed out in order. All before one that fails have thus been begun, so that the first failure
// in the range is always among those seen.
class piece_queue {
public:
    explicit piece_queue(std::size_t pieces) : pieces_(pieces) {}

    template <class action>
    void run(action const& act) {
        while (!stopped_.load(std::memory_order_relaxed)) {
            std::size_t const piece = next_.fetch_add(1, std::memory_order_relaxed);
            if (piece >= pieces_) return;
            try {
                act(piece);
            } catch (...) {
                record(piece);
            }
        }
    }
    void rethrow() const {
        if (failure_) std::rethrow_exception(failure_);
    }

private:
    void record(std::size_t piece) {
        std::lock_guard const guard(mutex_);
        if (!failure_ || piece < failed_) {
            failure_ = std::current_exception();
            failed_ = piece;
        }
        stopped_.store(true, std::memory_order_relaxed);
    }

    std::size_t const pieces_;
    std::atomic<std::size_t> next_{0};
    std::atomic<bool> stopped_{false};
    std::mutex mutex_;
    std::exception_ptr failure_;
    std::size_t failed_ = 0;
};

}  // namespace

void parallel_for(std::size_t count, std::size_t grain,
                  std::function<void(std::size_t, std::size_t)> const& work) {
    grain = std::max<std::size_t>(grain, 1);
    std::size_t const pieces = count / grain + (count % grain != 0);
    std::size_t const threads = threads_for(pieces);
    auto const run_piece = [&](std::size_t piece) {
        work(piece * grain, std::min(count - piece * grain, grain) + piece * grain);
    };
    if (threads == 1) {
        for (std::size_t piece = 0; piece < pieces; ++piece) run_piece(piece);
        return;
    }

    piece_queue queue(pieces);
    {
        std::vector<std::jthread> helpers;
        helpers.reserve(threads - 1);
        try {
            while (helpers.size() < threads - 1) helpers.emplace_back([&] { queue.run(run_piece); });
        } catch (std::system_error const&) {
            // The system refuses more threads: those that run take all the pieces.
        }
        queue.run(run_piece);
    }
    queue.rethrow();
}

void set_parallel_threads(unsigned int most) {
    most_threads.store(most, std::memory_order_relaxed);
}

}  // namespace tvmath
