// SPDX-License-Identifier: MIT
#include "app/UpdateDates.h"

#include "app/Outlets.h"
#include "platform/Bundle.h"
#include "platform/Calendar.h"
#include "platform/DateFormatter.h"
#include "platform/Platform.h"

#include <utility>

namespace {

using namespace std::chrono_literals;

// Formatting dates is slow, and the user should first see that the program is working. By then a cached report has also
// arrived, so its dates are formatted only once.
constexpr platform::Seconds timeToShowWork = 10ms;

}

UpdateDates::UpdateDates(
    platform::Platform& platform, Outlets& outlets, std::function<std::optional<platform::Date>()> nextUpdate)
    : platform_(platform)
    , outlets_(outlets)
    , nextUpdate_(std::move(nextUpdate))
    , windowObservation_(outlets.monitorWindow.visible.observe([this](bool isShown) { keepCurrent(isShown); }))
{
    outlets.dropDownMenu.needsUpdate = [this] { refresh(); };
}

void UpdateDates::showPlaceholder()
{
    showing_.reset();
    lastUpdate_.reset();
    shown_.reset();
    auto const placeholder = platform_.bundle.localizedString("SELECT_KEY");
    write(placeholder, placeholder);
}

// Formatting dates must not delay opening a menu whose dates are still right.
void UpdateDates::show()
{
    showing_.reset();
    auto const nextUpdate = nextUpdate_();
    Shown const now { *lastUpdate_, nextUpdate, platform::dayMark(platform_.runLoop.now()) };
    if (std::exchange(shown_, now) == now)
        return;
    platform::DateFormatter const formatter(platform_.dateLocale);
    write(formatter.string(*lastUpdate_),
        nextUpdate ? formatter.string(*nextUpdate) : platform_.bundle.localizedString("NO_NEXT_UPDATE"));
}

void UpdateDates::showSoon()
{
    showing_ = platform_.runLoop.after(timeToShowWork, [this] { show(); });
}

// Shows the dates again if they may read differently by now, unless the placeholder is shown.
void UpdateDates::refresh()
{
    if (lastUpdate_)
        show();
}

// An open window shows the dates too, so they are checked whenever a new day may have begun somewhere.
void UpdateDates::keepCurrent(bool isShown)
{
    check_.reset();
    if (!isShown)
        return;
    refresh();
    constexpr platform::QuarterHours quarter(1);
    auto const now = platform_.runLoop.now();
    check_ = platform_.runLoop.repeat(
        std::chrono::floor<platform::QuarterHours>(now) + quarter, quarter, [this] { refresh(); });
}

void UpdateDates::write(std::string_view lastUpdate, std::string_view nextUpdate)
{
    outlets_.lastUpdateText.text.set(platform_.bundle.labelledString("LAST_UPDATE", lastUpdate));
    outlets_.nextUpdateText.text.set(platform_.bundle.labelledString("NEXT_UPDATE", nextUpdate));
    outlets_.lastUpdateMenuItem->title.set(outlets_.lastUpdateText.text.get());
    outlets_.nextUpdateMenuItem->title.set(outlets_.nextUpdateText.text.get());
}
