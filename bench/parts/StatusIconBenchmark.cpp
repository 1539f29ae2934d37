// SPDX-License-Identifier: MIT
#include "bench/parts/Benchmarks.h"
#include "desktop/StatusIcon.h"

namespace {

void drawStatusIcons(benchmark::State& state)
{
    auto const title = QStringLiteral("57.3GB");
    auto const checked = statusPixmaps(title, StatusLook::Icon);
    // White is in the letters alone.
    require(!checked.isEmpty() && checked.back().pixels.contains("\xff\xff\xff\xff"), "the icon has letters");
    while (state.KeepRunning()) {
        auto pixmaps = statusPixmaps(title, StatusLook::Icon);
        benchmark::DoNotOptimize(pixmaps);
    }
}

}

void addStatusIconBenchmark() { add("status icon/ours", &drawStatusIcons); }
