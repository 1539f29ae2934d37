// SPDX-License-Identifier: MIT
#include "platform/Property.h"

#include <gtest/gtest.h>

using namespace platform;

TEST(Property, AnObserverMayDoWhatItLikesWhileItIsTold)
{
    auto number = std::make_unique<Property<int>>(1);
    std::vector<int> seen;
    // The one who sets comes first: those after it are told the newer value alone.
    auto raising = number->observe([&](int value) { number->set(value == 2 ? 3 : value); });
    Subscription subscription;
    subscription = number->observeChanges([&](int value) {
        seen.push_back(value);
        if (value == 4)
            subscription = {};
    });
    for (int const value : { 1, 2, 4, 5 })
        number->set(value);
    EXPECT_EQ(seen, (std::vector { 3, 4 }));
    number.reset();
    raising = {};
}
