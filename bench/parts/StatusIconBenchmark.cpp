// SPDX-License-Identifier: MIT
#include "bench/parts/Benchmarks.h"
#include "draw/StatusIcon.h"

namespace {

void drawStatusIcons(benchmark::State& state)
{
    auto const title = QStringLiteral("57.3GB");
    auto const checked = statusPixmaps(title, StatusLook::Icon);
    // Only the letters are white.
    require(!checked.empty() && checked.back().pixels.find("\xff\xff\xff\xff") != std::string::npos,
        "the icon has letters");
    while (state.KeepRunning()) {
        auto pixmaps = statusPixmaps(title, StatusLook::Icon);
        benchmark::DoNotOptimize(pixmaps);
    }
}

}

void addStatusIconBenchmark() { add("status icon/ours", &drawStatusIcons); }
