// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Property.h"
#include "platform/RunLoop.h"

#include <vector>

namespace platform {

/// A straight line from one opacity to another, on the monotonic clock. Nothing ticks: it is worked out when asked.
struct Fade {
    double from = 1.0;
    double to = 1.0;
    Seconds start {};
    Seconds duration {};

    double at(Seconds uptime) const;

    bool operator==(Fade const&) const = default;
};

/// How opaque a control is, from 0.0 to 1.0.
class Opacity {
public:
    explicit Opacity(double opacity)
        : fade(Fade { opacity, opacity })
    {
    }

    /// What is under way, for a desktop that animates by itself.
    Property<Fade> fade;

    double at(Seconds uptime) const { return fade.get().at(uptime); }
    void set(double opacity) { fade.set(Fade { opacity, opacity }); }
};

/// Fades all of them from where they are to the target, together, and then completes once. A later fade of the same
/// controls takes their place but does not cancel the completion.
void animate(
    RunLoop& runLoop, std::vector<Opacity*> const& opacities, double target, Seconds duration, Task completion);

}
