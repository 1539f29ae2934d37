// SPDX-License-Identifier: MIT
#include "platform/Opacity.h"

namespace platform {

double Fade::at(Seconds uptime) const
{
    if (uptime >= start + duration)
        return to;
    return from + (to - from) * ((uptime - start) / duration);
}

void animate(RunLoop& runLoop, std::vector<Opacity*> const& opacities, double target, Seconds duration, Task completion)
{
    auto const start = runLoop.uptime();
    for (auto* opacity : opacities)
        opacity->fade.set(Fade { opacity->at(start), target, start, duration });
    runLoop.performAfter(duration, std::move(completion));
}

}
