#include "platform/named_lock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <thread>

#include "services/service_test.h"

inline namespace tvmath {
namespace {

// A name for this test alone, whose lock file goes with the folder.
std::string lock_name(temporary_folder const& folder) {
    return (folder / "lock").string();
}

fs::path lock_file(temporary_folder const& folder) {
    std::string const unique = (folder / "").parent_path().filename().string();
    for (auto const& entry : fs::directory_iterator("/dev/shm")) {
        std::string const name = entry.path().filename().string();
        if (name.starts_with("tvmath-lock-") && name.find(unique) != std::string::npos) return entry.path();
    }
    return {};
}

// Another process can have the lock; hangs if it cannot.
bool is_free(std::string const& name) {
    return in_fresh_process([&] {
        auto const lock = named_lock::open(name);
        EXPECT_TRUE(lock && lock->acquire());
    });
}

// Another process cannot have it within some time. A slow machine may miss a fault, but not see one.
bool is_held(std::string const& name) {
    shared_number waits;
    child_process other([&] {
        auto const lock = named_lock::open(name);
        waits->store(1);
        EXPECT_TRUE(lock && lock->acquire());
    });
    while (waits->load() == 0 && !other.has_ended()) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    return !other.has_ended();
}

TEST(NamedLock, IsOwnedByAThreadThatMayTakeItAgain) {
    temporary_folder folder;
    std::string const name = lock_name(folder);
    auto const lock = named_lock::open(name);
    ASSERT_TRUE(lock && lock->acquire());
    {
        auto const again = named_lock::open(name);
        ASSERT_TRUE(again && again->acquire());
        lock->release();
        std::thread([&] { again->release(); }).join();  // of no effect: another thread's
        EXPECT_TRUE(is_held(name));
        again->release();
    }
    EXPECT_TRUE(is_free(name));
    lock->release();  // one too many
    EXPECT_TRUE(is_free(name));
}

TEST(NamedLock, DiffersByName) {
    temporary_folder folder;
    auto const lock = named_lock::open(lock_name(folder));
    ASSERT_TRUE(lock && lock->acquire());
    // The readable part of the file's name is the same.
    EXPECT_TRUE(is_free("x" + std::string(200, '_') + lock_name(folder)));
    EXPECT_TRUE(is_free(lock_name(folder) + "/"));
    EXPECT_TRUE(is_held(lock_name(folder)));
}

TEST(NamedLock, IsFreeWhenItsHolderIsKilledOrItsThreadEnds) {
    temporary_folder folder;
    std::string const name = lock_name(folder);
    auto const lock = named_lock::open(name);
    shared_number held;
    for (int i = 0; i < 20; ++i) {
        held->store(0);
        child_process holder([&] {
            auto const theirs = named_lock::open(name);
            EXPECT_TRUE(theirs && theirs->acquire() && theirs->acquire());
            held->store(1);
            for (;;) ::pause();
        });
        while (held->load() == 0) std::this_thread::yield();
        holder.kill();
        ASSERT_TRUE(lock->acquire());
        lock->release();
    }
    std::thread([&] { EXPECT_TRUE(named_lock::open(name)->acquire()); }).join();
    EXPECT_TRUE(lock->acquire());
    lock->release();
    EXPECT_TRUE(is_free(name));
}

// All start at once on a lock that is not there; the number is counted up without an atomic step.
TEST(NamedLock, IsMadeOnceByManyProcesses) {
    for (int round = 0; round < 30; ++round) {
        temporary_folder folder;
        shared_number started, count;
        {
            std::vector<std::unique_ptr<child_process>> processes;
            for (int i = 0; i < 8; ++i) {
                processes.push_back(std::make_unique<child_process>([&] {
                    ++*started;
                    while (started->load() < 8) std::this_thread::yield();
                    for (int n = 0; n < 50; ++n) {
                        auto const lock = named_lock::open(lock_name(folder));
                        if (!lock || !lock->acquire()) ::_exit(3);
                        count->store(count->load() + 1);
                        lock->release();
                    }
                }));
            }
            for (auto const& process : processes) ASSERT_TRUE(process->succeeded());
        }
        ASSERT_EQ(count->load(), 400);
    }
}

TEST(NamedLock, ExcludesTheThreadsOfAProcess) {
    temporary_folder folder;
    int count = 0;
    std::thread threads[4];
    for (std::thread& t : threads) {
        t = std::thread([&] {
            for (int n = 0; n < 500; ++n) {
                auto const lock = named_lock::open(lock_name(folder));
                ASSERT_TRUE(lock && lock->acquire());
                ++count;
                lock->release();
            }
        });
    }
    for (std::thread& t : threads) t.join();
    EXPECT_EQ(count, 2000);
}

// What stands under the name of the file may be half-made, foreign, or gone.
TEST(NamedLock, RepairsItsFile) {
    temporary_folder folder;
    std::string const name = lock_name(folder);
    fs::path file;
    {
        auto const lock = named_lock::open(name);
        file = lock_file(folder);
        ASSERT_FALSE(file.empty());
        EXPECT_EQ(fs::status(file).permissions(), fs::perms(0666));
    }
    EXPECT_FALSE(fs::exists(file));
    for (std::string const& foreign : {std::string(), std::string("half"), std::string(4096, 'x')}) {
        write_bytes(file, foreign);
        auto const lock = named_lock::open(name);
        ASSERT_TRUE(lock && lock->acquire());
        EXPECT_TRUE(is_held(name));
        lock->release();
        EXPECT_TRUE(is_free(name));
    }
    {
        auto const lock = named_lock::open(name);
        fs::remove(file);
        ASSERT_TRUE(lock->acquire());  // a new file, like that of those who come now
        EXPECT_TRUE(is_held(name));
        lock->release();
        fs::remove(file);
        fs::create_directory(file);
        EXPECT_FALSE(lock->acquire());
    }
    EXPECT_FALSE(named_lock::open(name));
}

// The child of a process that holds a lock holds nothing.
TEST(NamedLock, IsNotInherited) {
    temporary_folder folder;
    auto const lock = named_lock::open(lock_name(folder));
    ASSERT_TRUE(lock && lock->acquire());
    EXPECT_TRUE(in_fresh_process([&] { lock->release(); }));
    EXPECT_TRUE(is_held(lock_name(folder)));
    lock->release();
    EXPECT_TRUE(in_fresh_process([&] {
        EXPECT_TRUE(lock->acquire());
        lock->release();
    }));
}

}  // namespace
}  // namespace tvmath
