// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunLoop.h"

namespace platform {
class TextField;
}

/// The message that confirms an emptied cache: it fades in, stays for a while and fades out. Main thread only.
class CacheClearedMessage {
public:
    CacheClearedMessage(platform::RunLoop& runLoop, platform::TextField& text)
        : runLoop_(runLoop)
        , text_(text)
    {
    }

    void show();

private:
    void animateSuccessMessageWithAnimationTime(platform::Seconds duration, bool andAnimatingIn);
    void hideCacheClearedText();
    void fade(double opacity, platform::Seconds duration, platform::Task completion);
    void hideLater();

    platform::RunLoop& runLoop_;
    platform::TextField& text_;
    bool animationRanAlready_ = false;
};
