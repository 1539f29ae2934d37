// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Property.h"
#include "platform/RunLoop.h"

#include <vector>

namespace platform {

/// A linear change of opacity on the monotonic clock. No timer drives it: the value is computed on request.
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

    /// The fade in progress, for a desktop that does its own animation.
    Property<Fade> fade;

    double at(Seconds uptime) const { return fade.get().at(uptime); }
    void set(double opacity) { fade.set(Fade { opacity, opacity }); }
};

/// Fades all opacities together from their current values to the target, then runs the completion once. A later fade of
/// the same controls replaces this one but does not cancel its completion.
void animate(
    RunLoop& runLoop, std::vector<Opacity*> const& opacities, double target, Seconds duration, Task completion);

}
