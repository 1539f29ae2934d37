// SPDX-License-Identifier: MIT
#include "app/CacheClearedMessage.h"

#include "platform/Controls.h"

#include <chrono>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr platform::Seconds fadeDuration = 1500ms;
constexpr platform::Seconds stay = 5s;

}

void CacheClearedMessage::show()
{
    bool const isFirstTime = !std::exchange(animationRanAlready_, true);
    animateSuccessMessageWithAnimationTime(isFirstTime ? platform::Seconds::zero() : fadeDuration, !isFirstTime);
}

// Fades the message in and schedules its removal, or fades it out. A duration of zero marks the first time it is shown.
void CacheClearedMessage::animateSuccessMessageWithAnimationTime(platform::Seconds duration, bool andAnimatingIn)
{
    if (duration == platform::Seconds::zero()) {
        // The message starts out transparent, whatever the layout set.
        fade(0.0, duration, [this] {
            text_.hidden.set(false);
            fade(1.0, fadeDuration, [this] { hideLater(); });
        });
        return;
    }
    text_.opacity.set(andAnimatingIn ? 0.0 : 1.0);
    text_.hidden.set(false);
    fade(andAnimatingIn ? 1.0 : 0.0, duration, [this, andAnimatingIn] {
        if (andAnimatingIn)
            hideLater();
        else
            text_.hidden.set(true);
    });
}

void CacheClearedMessage::hideCacheClearedText() { animateSuccessMessageWithAnimationTime(fadeDuration, false); }

void CacheClearedMessage::fade(double opacity, platform::Seconds duration, platform::Task completion)
{
    platform::animate(runLoop_, { &text_.opacity }, opacity, duration, std::move(completion));
}

void CacheClearedMessage::hideLater()
{
    runLoop_.performAfter(stay, [this] { hideCacheClearedText(); });
}
