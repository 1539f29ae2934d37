// SPDX-License-Identifier: MIT
#include "app/UsageFigures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <vector>

TEST(UsageFigures, ClimbsTheUnitsOnlyAboveAThousandAndThreeTimesAtMost)
{
    std::vector<std::tuple<char const*, char const*, double>> const cases { { "1000000000", "MB", 1000 },
        { "1000500000", "GB", 1.0005 }, { "2500000000000000", "PB", 2.5 }, { "5000000000000000000", "PB", 5000 },
        { "", "MB", 0 } };
    for (auto const& [bytes, unit, total] : cases) {
        auto figures = UsageFigures::fromReport({ { "total:download", bytes } }, "0.5");
        EXPECT_EQ(figures.scaleToDisplayUnit(), unit) << bytes;
        EXPECT_DOUBLE_EQ(figures.overallTotal, total) << bytes;
        EXPECT_TRUE(figures.hasCap());
    }
    EXPECT_TRUE(std::isfinite(UsageFigures::fromReport({ { "used:upload", "1e999" } }, "1e-300").percentage()));
}
