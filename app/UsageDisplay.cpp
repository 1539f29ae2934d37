// SPDX-License-Identifier: MIT
#include "app/UsageDisplay.h"

#include "app/Outlets.h"
#include "app/UsageTexts.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "platform/StatusItem.h"
#include "storage/KeyEntry.h"

#include <array>
#include <chrono>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr platform::Seconds fadeDuration = 500ms;

/// Where a figure is shown.
struct FigurePlace {
    double UsageFigures::* figure;
    platform::TextField Outlets::* field;
    /// The figure's line in the menu, if it has one, and the key of the line's label.
    Outlets::MenuItem Outlets::* line = nullptr;
    std::string_view label {};
};

constexpr std::array places {
    FigurePlace {
        &UsageFigures::downloaded, &Outlets::downloadUsage, &Outlets::downloadedMenuItem, "DOWNLOADED_QUOTA" },
    FigurePlace { &UsageFigures::uploaded, &Outlets::uploadUsage },
    FigurePlace { &UsageFigures::usedTotal, &Outlets::totalUsage },
    FigurePlace { &UsageFigures::graceDownloaded, &Outlets::downloadFreeUsage, &Outlets::freeDownloadedMenuItem,
        "DOWNLOADED_GRACE" },
    FigurePlace { &UsageFigures::graceUploaded, &Outlets::uploadFreeUsage },
    FigurePlace { &UsageFigures::graceTotal, &Outlets::totalFreeUsage },
    FigurePlace { &UsageFigures::overallTotal, &Outlets::finalTotalUsage, &Outlets::totalUsageMenuItem, "TOTAL_USAGE" },
    FigurePlace { &UsageFigures::cap, &Outlets::usageCapText, &Outlets::usageCapMenuItem, "USAGE_CAP" },
    FigurePlace {
        &UsageFigures::remaining, &Outlets::usageRemainingText, &Outlets::remainingUsageMenuItem, "REMAINING_USAGE" },
};

}

UsageDisplay::UsageDisplay(platform::Platform& platform, Outlets& outlets, platform::StatusItem& statusItem,
    VolumeFormatter const& volumeFormatter)
    : platform_(platform)
    , outlets_(outlets)
    , statusItem_(statusItem)
    , volumeFormatter_(volumeFormatter)
    , titleObservation_(
          statusItem.title.observe([&outlets](std::string const& title) { outlets.headline.text.set(title); }))
    , choiceObservation_(
          outlets.statusBarDropdown.indexOfSelectedItem.observe([this](int choice) { showHeadlineCaption(choice); }))
{
}

std::string UsageDisplay::text(std::string_view key) const { return platform_.bundle.localizedString(key); }

void UsageDisplay::showHeadlineCaption(int choice)
{
    auto const& choices = outlets_.statusBarDropdown.items.get();
    bool const isChoice = choice >= 0 && static_cast<std::size_t>(choice) < choices.size();
    outlets_.headlineCaption.text.set(isChoice ? choices[static_cast<std::size_t>(choice)] : std::string());
}

void UsageDisplay::showWaiting(bool hasConnection)
{
    isWaiting_ = true;
    statusItem_.title.set(text("PLEASE_WAIT"));
    outlets_.refreshStatus.text.set(text(hasConnection ? "REFRESH_WAITING" : "NO_CONNECTION_YET"));
    showVolumeLines(text("SELECT_KEY"));
}

void UsageDisplay::showFailure()
{
    isWaiting_ = false;
    outlets_.refreshStatus.text.set(text("REFRESH_FAILED"));
    auto const failure = text("FAILURE_SHORT_RESPONSE");
    for (auto const& place : places)
        (outlets_.*place.field).text.set(failure);
    statusItem_.title.set(failure);
    showVolumeLines(errorText);
}

void UsageDisplay::showFigures(UsageFigures const& figures)
{
    UsageTexts const texts(figures, volumeFormatter_);
    isWaiting_ = false;
    outlets_.refreshStatus.text.set({});
    outlets_.setCapButton.hidden.set(figures.hasCap());
    showTexts(texts);
    showMenuLines();
    showLevel(figures, texts);
    showStatusTitle(texts);
}

void UsageDisplay::showStatusTitle(UsageFigures const& figures)
{
    showStatusTitle(UsageTexts(figures, volumeFormatter_));
}

void UsageDisplay::showStatusTitle(UsageTexts const& texts)
{
    int const choice = outlets_.statusBarDropdown.indexOfSelectedItem.get();
    statusItem_.title.set(texts.statusTitle(choice));
}

void UsageDisplay::showConnection(std::optional<std::string> const& entry)
{
    auto title = text("TARVO_TITLE_NEW");
    if (entry)
        title.append(" - ").append(KeyEntry::parse(*entry).nickname);
    outlets_.monitorWindow.title.set(std::move(title));
}

// The lines of the cap keep their last values while there is no report.
void UsageDisplay::showVolumeLines(std::string_view value)
{
    for (auto const& place : places) {
        if (place.line && !UsageFigures::dependsOnCap(place.figure))
            (outlets_.*place.line)->title.set(platform_.bundle.labelledString(place.label, value));
    }
}

void UsageDisplay::showTexts(UsageTexts const& texts)
{
    for (auto const& place : places) {
        auto const shown = texts.textsOf(place.figure);
        (outlets_.*place.field).text.set(shown.field);
        (outlets_.*place.field).toolTip.set(shown.toolTip);
        if (place.line)
            (outlets_.*place.line)->title.set(platform_.bundle.labelledString(place.label, shown.line));
    }
}

void UsageDisplay::showMenuLines()
{
    outlets_.usageCapMenuItem->hidden.set(!outlets_.usageCapToggle.on.get());
    outlets_.remainingUsageMenuItem->hidden.set(!outlets_.remainingUsageToggle.on.get());
    outlets_.lastUpdateMenuItem->hidden.set(!outlets_.lastUpdateToggle.on.get());
    outlets_.nextUpdateMenuItem->hidden.set(!outlets_.nextUpdateToggle.on.get());
}

void UsageDisplay::showLevel(UsageFigures const& figures, UsageTexts const& texts)
{
    double const opacity = outlets_.usageBar.opacity.at(platform_.runLoop.uptime());
    if (!figures.hasCap()) {
        if (opacity != 0.0)
            fadeLevel(0.0);
        return;
    }

    outlets_.usageBar.maxValue.set(figures.cap);
    outlets_.usageBar.doubleValue.set(figures.usedTotal);
    outlets_.usageBar.warningValue.set(0.7 * figures.cap);
    outlets_.usageBar.criticalValue.set(0.85 * figures.cap);
    outlets_.usageCapPercentageText.text.set(texts.percentage());
    if (opacity == 1.0)
        return;
    outlets_.usageBar.opacity.set(0.0);
    outlets_.usageCapPercentageText.opacity.set(0.0);
    setLevelHidden(false);
    fadeLevel(1.0);
}

void UsageDisplay::fadeLevel(double opacity)
{
    platform::animate(platform_.runLoop, { &outlets_.usageBar.opacity, &outlets_.usageCapPercentageText.opacity },
        opacity, fadeDuration, [this, hidden = opacity == 0.0] { setLevelHidden(hidden); });
}

void UsageDisplay::setLevelHidden(bool hidden)
{
    outlets_.usageBar.hidden.set(hidden);
    outlets_.usageCapPercentageText.hidden.set(hidden);
}
