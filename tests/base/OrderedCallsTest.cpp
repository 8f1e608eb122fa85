#include "base/OrderedCalls.h"

#include "fakes/ManualExecutor.h"

#include <gtest/gtest.h>
#include <string>

namespace brevanta {

namespace {

class OrderedCallsTest : public testing::Test {
protected:
    void call(char name)
    {
        calls->call([this, name] { made += name; });
    }

    ManualExecutor executor;
    std::unique_ptr<OrderedCalls> calls { std::make_unique<OrderedCalls>(executor) };
    std::string made;
};

}

TEST_F(OrderedCallsTest, CallsAtOnceUnlessHeldAndKeepsTheOrder)
{
    call('a');
    EXPECT_EQ(made, "a");
    {
        const OrderedCalls::Hold hold(*calls);
        call('b');
        EXPECT_EQ(made, "a");
    }
    call('c'); // Comes before the executor's turn, and goes behind what waits all the same.
    EXPECT_EQ(made, "abc");
    executor.runAll();
    EXPECT_EQ(made, "abc");
}

TEST_F(OrderedCallsTest, ACallFromInsideOfACallComesAfterIt)
{
    calls->call([this] {
        call('b');
        made += 'a';
        const OrderedCalls::Hold hold(*calls);
        call('c');
    });
    EXPECT_EQ(made, "abc");
}

TEST_F(OrderedCallsTest, NothingIsCalledAfterTheEnd)
{
    {
        const OrderedCalls::Hold hold(*calls);
        call('a');
    }
    calls->end();
    call('b');
    executor.runAll();
    EXPECT_EQ(made, "");

    calls = std::make_unique<OrderedCalls>(executor);
    {
        const OrderedCalls::Hold hold(*calls);
        call('c');
    }
    calls.reset();
    executor.runAll();
    EXPECT_EQ(made, "");
}

}
