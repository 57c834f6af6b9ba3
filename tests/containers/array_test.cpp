#include "tvmath/array.h"

#include <gtest/gtest.h>

#include <latch>
#include <stdexcept>
#include <thread>
#include <vector>

#include "tvmath/point.h"

inline namespace tvmath {
namespace {

using idioms::array;

int count_of(array<double> const& a) {
    return a.address()->reference_count;
}

array<double> numbers(std::initializer_list<double> values) {
    return array<double>(static_cast<unsigned int>(values.size()), values.begin());
}

std::vector<double> contents(array<double> const& a) {
    return std::vector<double>(a.begin(), a.end());
}

// Counts the objects alive, and throws when told to.
struct tracked {
    static inline int alive = 0;
    static inline int throw_at = -1;
    tracked() { arrive(); }
    tracked(tracked const&) { arrive(); }
    ~tracked() { --alive; }

private:
    static void arrive() {
        if (alive == throw_at) throw std::runtime_error("told to");
        ++alive;
    }
};

TEST(Array, IsOnePointerWide) {
    EXPECT_EQ(sizeof(array<double>), sizeof(void*));
    EXPECT_EQ(sizeof(idioms::container), 16u);
}

TEST(Array, WriterOfASharedBlockTakesAPrivateCopy) {
    array<double> a(3);
    array<double> b = a;
    EXPECT_EQ(count_of(a), 2);
    EXPECT_TRUE(a == b);
    b(0) = 1;
    EXPECT_EQ(contents(a), (std::vector<double>{0, 0, 0}));
    EXPECT_EQ(contents(b), (std::vector<double>{1, 0, 0}));
    EXPECT_EQ(count_of(a), 1);
    EXPECT_FALSE(a == b);

    double const* const block = b.begin();
    b(1) = 2;  // alone: in place
    EXPECT_EQ(b.begin(), block);
}

TEST(Array, ReadingNeverCopies) {
    array<double> const a = numbers({1, 2});
    array<double> const b = a;
    EXPECT_EQ(b[1] + *b.begin() + b.capacity(), 5);
    EXPECT_EQ(count_of(a), 2);
}

TEST(Array, ElementsStartByTheirTraits) {
    array<point> const points(2);
    EXPECT_TRUE(points[0].is_trivial() && points[1].is_trivial());
    array<unsigned int> const zeros(2);
    EXPECT_EQ(zeros[0] + zeros[1], 0u);
    // Lists in a list: each an empty block of its own.
    array<array<double>> const lists(2);
    EXPECT_FALSE(!lists[0]);
    EXPECT_EQ(lists[0].capacity(), 0u);
    EXPECT_FALSE(lists[0] == lists[1]);
}

TEST(Array, LiteralZeroIsAValueAndNoNullPointer) {
    EXPECT_EQ(contents(array<double>(2, 0)), (std::vector<double>{0, 0}));
}

TEST(Array, CopiesFromAStridedSource) {
    double const source[] = {0, 1, 2, 3, 4, 5};
    EXPECT_EQ(contents(array<double>(3, source, 2)), (std::vector<double>{0, 2, 4}));
    EXPECT_EQ(contents(array<double>(3, source + 5, -1)), (std::vector<double>{5, 4, 3}));
}

TEST(Array, SelfAssignmentKeepsTheBlockAlive) {
    array<double> a = numbers({1, 2});
    array<double>& same = a;
    a = same;
    EXPECT_EQ(count_of(a), 1);
    a = std::move(same);
    EXPECT_EQ(contents(a), (std::vector<double>{1, 2}));
}

TEST(Array, RedimKeepsTheFirstElementsAndFillsTheRest) {
    struct {
        char const* name;
        unsigned int n;
        std::vector<double> zeros, sevens;
    } const cases[] = {
        {"shrink", 1, {1}, {1}},
        {"grow", 4, {1, 2, 0, 0}, {1, 2, 7, 7}},
        {"to nothing", 0, {}, {}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        array<double> const original = numbers({1, 2});
        array<double> a = original, b = original;
        a.redim(c.n);
        b.redim(c.n, 7.0);
        EXPECT_EQ(contents(a), c.zeros);
        EXPECT_EQ(contents(b), c.sevens);
        EXPECT_EQ(count_of(original), 1);
    }
    array<double> const original = numbers({1, 2});
    array<double> a = original;
    a.redim(2);
    a.redim(2, 7.0);
    EXPECT_TRUE(a == original);  // the present size leaves even a shared block alone
}

TEST(Array, RedimWithAnElementOfItsOwnAsValue) {
    array<double> a = numbers({5});
    a.redim(3, a[0]);
    EXPECT_EQ(contents(a), (std::vector<double>{5, 5, 5}));
}

TEST(Array, Append) {
    array<double> a = numbers({1, 2});
    array<double> const before = a;
    a.append(array<double>());
    EXPECT_TRUE(a == before);
    a.append(a);
    EXPECT_EQ(contents(a), (std::vector<double>{1, 2, 1, 2}));
    EXPECT_EQ(contents(before), (std::vector<double>{1, 2}));
    array<double> empty;
    empty.append(before);
    EXPECT_FALSE(empty == before);
    EXPECT_EQ(contents(empty), (std::vector<double>{1, 2}));
}

TEST(Array, ReverseSharesBelowTwoElements) {
    array<double> const one = numbers({1});
    array<double> reversed = one.reverse_copy();
    EXPECT_TRUE(reversed == one);
    reversed(0) = 2;
    EXPECT_EQ(one[0], 1);
    array<double> three = numbers({1, 2, 3});
    three.reverse_self();
    EXPECT_EQ(contents(three), (std::vector<double>{3, 2, 1}));
}

TEST(Array, EmptyIsNoNullHandleButMovedFromIs) {
    array<double> a;
    EXPECT_FALSE(!a);
    EXPECT_TRUE(a.is_trivial());
    EXPECT_EQ(a.begin(), a.end());
    array<double> const taken = std::move(a);
    EXPECT_EQ(count_of(taken), 1);
    EXPECT_THROW(a.capacity(), pointer_exception);
    a = taken;
    EXPECT_EQ(count_of(taken), 2);
}

TEST(Array, OfObjectsDestroysEachOnceAlsoWhenAConstructorThrows) {
    {
        array<tracked> a(3);
        array<tracked> b = a;
        EXPECT_EQ(tracked::alive, 3);
        b.lazycopy_begin();
        EXPECT_EQ(tracked::alive, 6);
        b.redim(1);
        EXPECT_EQ(tracked::alive, 4);
        tracked::throw_at = 6;
        EXPECT_THROW(a.redim(5), std::runtime_error);  // 3 copies do not fit below 6
        tracked::throw_at = -1;
        EXPECT_EQ(tracked::alive, 4);
        EXPECT_EQ(a.capacity(), 3u);
    }
    EXPECT_EQ(tracked::alive, 0);
}

TEST(Array, WithoutMemoryRaisesPointerException) {
    struct huge {
        char bytes[std::size_t{1} << 28];
        static constexpr bool optimize_dtor() { return true; }
    };
    unsigned int volatile const n = 0xFFFFFFFFu;  // 2^60 bytes; volatile, or the compiler objects
    EXPECT_THROW(array<huge>{n}, pointer_exception);
}

TEST(Storage, ACountThatRanOverRaisesStorageException) {
    array<double> const a(1);
    a.address()->reference_count = -1;
    try {
        array<double> const b = a;
        FAIL();
    } catch (storage_exception const& e) {
        EXPECT_STREQ(e.what(), "storage");
    }
    a.address()->reference_count = 1;
}

TEST(Ref, ReleasesWithItsLastHandle) {
    struct node : idioms::storage {
        explicit node(bool& dead_flag) : dead(dead_flag) {}
        ~node() override { dead = true; }
        bool& dead;
    };
    bool dead = false;
    idioms::ref<node> a(new node(dead));
    {
        idioms::ref<node> b = a, c;
        EXPECT_TRUE(!c);
        idioms::ref<node>::swap(a, c);
        EXPECT_TRUE(!a && b == c && b >= c && a < b && b > a && a != b);
        EXPECT_EQ(b->reference_count, 2);
        EXPECT_THROW(*a, pointer_exception);
        a = c;
    }
    EXPECT_FALSE(dead);
    a = idioms::ref<node>();
    EXPECT_TRUE(dead);
}

// Run under ThreadSanitizer: sharing, unsharing and releasing from several threads at once.
TEST(Array, HandlesOnOneBlockMayBeUsedFromSeveralThreads) {
    constexpr int threads = 4, rounds = 2000;
    array<double> shared(16, 1.0);
    std::latch start(threads);
    std::vector<double> sums(threads, 0.0);
    {
        std::vector<std::jthread> workers;
        for (int t = 0; t < threads; ++t) {
            workers.emplace_back([&sums, &start, mine = shared, t]() mutable {
                start.arrive_and_wait();
                for (int i = 0; i < rounds; ++i) {
                    array<double> copy = mine;
                    copy(3) = t + 2;
                    sums[static_cast<std::size_t>(t)] += copy[3] + mine[3];
                }
                mine(0) = t;  // races with the other threads' releases of the same block
            });
        }
        shared = array<double>();
    }
    for (int t = 0; t < threads; ++t) EXPECT_EQ(sums[static_cast<std::size_t>(t)], rounds * (t + 3));
    EXPECT_EQ(count_of(shared), 1);
}

}  // namespace
}  // namespace tvmath
