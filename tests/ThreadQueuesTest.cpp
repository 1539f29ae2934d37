// SPDX-License-Identifier: MIT
#include "platform/ThreadQueues.h"

#include <gtest/gtest.h>

#include <future>

using namespace std::chrono_literals;

TEST(ThreadQueues, AQueueThatWaitsHoldsUpNoOther)
{
    platform::ThreadQueues queues;
    std::promise<void> end;
    EXPECT_TRUE(queues.async("first", [&] { end.get_future().wait(); }));
    EXPECT_FALSE(queues.waitUntilIdle(1ms));
    EXPECT_TRUE(queues.async("second", [&] { end.set_value(); }));
    EXPECT_TRUE(queues.waitUntilIdle(10s));
}
