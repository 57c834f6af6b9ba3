#include "tvmath/ctl_ref.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <stdexcept>
#include <thread>
#include <vector>

inline namespace tvmath {
namespace {

struct base {
    virtual ~base() = default;
    virtual int kind() const { return 0; }
};

struct derived : base {
    derived(int& alive_count, int value_kept) : alive(alive_count), value(value_kept) { ++alive; }
    ~derived() override { --alive; }
    int kind() const override { return value; }
    int& alive;
    int value;
};

TEST(CtlRef, DestroysTheObjectThroughAHandleOnItsBase) {
    int alive = 0;
    {
        ctl::ref<base> first;
        EXPECT_TRUE(!first);
        EXPECT_EQ(first.reference_count(), 0);
        {
            ctl::ref<derived> const made = ctl::make_ref<derived>(alive, 7);
            EXPECT_EQ(made.reference_count(), 1);
            first = made;
            EXPECT_EQ(made.reference_count(), 2);
            EXPECT_TRUE(first == made);
        }
        EXPECT_EQ(first->kind(), 7);
        ctl::ref<base>& same = first;
        first = same;
        EXPECT_EQ(first.reference_count(), 1);
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(CtlRef, EmptyHandleRaisesPointerException) {
    ctl::ref<base> const empty;
    EXPECT_EQ(empty.address(), nullptr);
    EXPECT_THROW(empty->kind(), pointer_exception);
    EXPECT_THROW(*empty, pointer_exception);
}

TEST(CtlRef, CounterIsTheFirstWordOfTheObjectsBlock) {
    ctl::ref<double> const number = ctl::make_ref<double>(2.5);
    ctl::ref<double> const other = number;
    auto const* const block = reinterpret_cast<unsigned char const*>(number.address()) - alignof(double);
    EXPECT_EQ(*reinterpret_cast<std::int32_t const*>(block), 2);
}

TEST(CtlRef, ConstructorThatThrowsLeaksNothing) {
    struct refusing {
        refusing() { throw std::runtime_error("refused"); }
    };
    EXPECT_THROW(ctl::make_ref<refusing>(), std::runtime_error);  // the address sanitizer looks for the leak
}

TEST(CtlRef, IsCountedFromSeveralThreads) {
    int alive = 0;
    {
        ctl::ref<base> shared = ctl::make_ref<derived>(alive, 1);
        std::vector<std::jthread> workers;
        for (int t = 0; t < 4; ++t) {
            workers.emplace_back([mine = shared] {
                for (int i = 0; i < 2000; ++i) ctl::ref<base> const copy = mine;
            });
        }
        shared = ctl::ref<base>();
    }
    EXPECT_EQ(alive, 0);
}

}  // namespace
}  // namespace tvmath
