// SPDX-License-Identifier: MIT
#include "app/UsageFigures.h"

#include <gtest/gtest.h>

#include <cmath>

TEST(UsageFigures, ReadsTheCapAsTyped)
{
    struct {
        char const* text;
        double megabytes;
    } const cases[] { { "250", 250000 }, { "", 0 }, { "abc", 0 }, { "1e3", 1000000 }, { "-5", -5000 }, { "0.5", 500 },
        { "12,5", 12000 }, { "0", 0 } };
    for (auto const& [text, megabytes] : cases) {
        auto const figures = UsageFigures::fromReport({}, text);
        EXPECT_EQ(figures.cap, megabytes) << text;
        EXPECT_EQ(figures.hasCap(), megabytes != 0) << text;
    }
    EXPECT_TRUE(std::isfinite(UsageFigures::fromReport({ { "used:upload", "1e999" } }, "1e-300").percentage()));
}

TEST(UsageFigures, ClimbsTheUnitsOnlyAboveAThousandAndThreeTimesAtMost)
{
    struct {
        char const* bytes;
        char const* unit;
        double total;
    } const cases[] { { "1000000000", "MB", 1000 }, { "1000500000", "GB", 1.0005 }, { "2500000000000000", "PB", 2.5 },
        { "5000000000000000000", "PB", 5000 }, { "", "MB", 0 } };
    for (auto const& each : cases) {
        auto figures = UsageFigures::fromReport({ { "total:download", each.bytes } }, "0.5");
        EXPECT_EQ(figures.scaleToDisplayUnit(), each.unit) << each.bytes;
        EXPECT_DOUBLE_EQ(figures.overallTotal, each.total) << each.bytes;
        EXPECT_TRUE(figures.hasCap());
    }
}
