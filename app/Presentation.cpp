// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "app/UsageFigures.h"
#include "platform/Platform.h"
#include "storage/KeyEntry.h"

namespace {

using namespace std::chrono_literals;

constexpr platform::Seconds retryDelay = 30s;
constexpr platform::Seconds fadeDuration = 500ms;
constexpr std::string_view megabyte = "MB";

}

std::string AppDelegate::formattedUsageStringWithUsageValue(
    double value, std::optional<std::string_view> andMeasurement) const
{
    if (andMeasurement)
        return usageFormatter_.string(value).append(*andMeasurement);
    if (value == 0.0)
        return text("UNLIMITED");
    if (value == -1.0)
        return "∞";
    return text("FAILURE_SHORT_RESPONSE");
}

std::string AppDelegate::capped(double volume, UsageFigures const& figures, std::string_view unit) const
{
    return figures.hasCap() ? formattedUsageStringWithUsageValue(volume, unit)
                            : formattedUsageStringWithUsageValue(0.0, std::nullopt);
}

void AppDelegate::showError()
{
    waiting_ = false;
    outlets_.refreshStatus.text.set(text("REFRESH_FAILED"));
    auto const failure = text("FAILURE_SHORT_RESPONSE");
    for (auto* const field : { &outlets_.totalUsage, &outlets_.downloadUsage, &outlets_.uploadUsage,
             &outlets_.uploadFreeUsage, &outlets_.downloadFreeUsage, &outlets_.totalFreeUsage,
             &outlets_.finalTotalUsage, &outlets_.usageCapText, &outlets_.usageRemainingText })
        field->text.set(failure);
    usageStatusItem_.title.set(failure);
    outlets_.downloadedMenuItem->title.set(labelled("DOWNLOADED_QUOTA", "Error"));
    outlets_.freeDownloadedMenuItem->title.set(labelled("DOWNLOADED_GRACE", "Error"));
    outlets_.totalUsageMenuItem->title.set(labelled("TOTAL_USAGE", "Error"));
    fixErrorTimer_ = platform_.runLoop.after(retryDelay, [this] { doFixError(); });
}

void AppDelegate::presentReport()
{
    waiting_ = false;
    // An overlapping refresh may have failed and started the timer.
    fixErrorTimer_.reset();
    outlets_.refreshStatus.text.set({});
    updateTitleBarDates();
    auto figures = UsageFigures::fromReport(*usageDictionary_, outlets_.usageLimit.text.get());
    showToolTips(figures);
    showLevel(figures);
    outlets_.setCapButton.hidden.set(figures.hasCap());
    auto const unit = figures.scaleToDisplayUnit();
    showFields(figures, unit);
    showWindowTitle();
    showMenu(figures, unit);
    usageStatusItem_.title.set(statusTitle(figures, unit));
}

void AppDelegate::showToolTips(UsageFigures const& figures)
{
    auto const volume = [this](double value) { return formattedUsageStringWithUsageValue(value, megabyte); };
    outlets_.downloadUsage.toolTip.set(volume(figures.downloaded));
    outlets_.uploadUsage.toolTip.set(volume(figures.uploaded));
    outlets_.totalUsage.toolTip.set(volume(figures.usedTotal));
    outlets_.downloadFreeUsage.toolTip.set(volume(figures.graceDownloaded));
    outlets_.uploadFreeUsage.toolTip.set(volume(figures.graceUploaded));
    outlets_.totalFreeUsage.toolTip.set(volume(figures.graceTotal));
    outlets_.finalTotalUsage.toolTip.set(volume(figures.overallTotal));
    outlets_.usageCapText.toolTip.set(capped(figures.cap, figures, megabyte));
    outlets_.usageRemainingText.toolTip.set(capped(figures.remaining, figures, megabyte));
}

void AppDelegate::showLevel(UsageFigures const& figures)
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
    outlets_.usageCapPercentageText.text.set(usageFormatter_.string(figures.percentage()) + "%");
    if (opacity == 1.0)
        return;
    outlets_.usageBar.opacity.set(0.0);
    outlets_.usageCapPercentageText.opacity.set(0.0);
    setLevelHidden(false);
    fadeLevel(1.0);
}

void AppDelegate::fadeLevel(double opacity)
{
    platform::animate(platform_.runLoop, { &outlets_.usageBar.opacity, &outlets_.usageCapPercentageText.opacity },
        opacity, fadeDuration, [this, hidden = opacity == 0.0] { setLevelHidden(hidden); });
}

void AppDelegate::setLevelHidden(bool hidden)
{
    outlets_.usageBar.hidden.set(hidden);
    outlets_.usageCapPercentageText.hidden.set(hidden);
}

void AppDelegate::showFields(UsageFigures const& figures, std::string_view unit)
{
    auto const volume = [this, unit](double value) { return formattedUsageStringWithUsageValue(value, unit); };
    outlets_.downloadUsage.text.set(volume(figures.downloaded));
    outlets_.uploadUsage.text.set(volume(figures.uploaded));
    outlets_.totalUsage.text.set(volume(figures.usedTotal));
    outlets_.downloadFreeUsage.text.set(volume(figures.graceDownloaded));
    outlets_.uploadFreeUsage.text.set(volume(figures.graceUploaded));
    outlets_.totalFreeUsage.text.set(volume(figures.graceTotal));
    outlets_.finalTotalUsage.text.set(volume(figures.overallTotal));

    auto const endless = formattedUsageStringWithUsageValue(-1.0, std::nullopt);
    outlets_.usageCapText.text.set(figures.hasCap() ? volume(figures.cap) : endless);
    outlets_.usageRemainingText.text.set(figures.hasCap() ? volume(figures.remaining) : endless);
}

void AppDelegate::showWindowTitle()
{
    auto title = text("TARVO_TITLE_NEW");
    // The last connection may have been removed before its report arrived.
    if (auto const entry = getCurrentlySelectedKey())
        title.append(" - ").append(KeyEntry::parse(*entry).nickname);
    outlets_.monitorWindow.title.set(std::move(title));
}

void AppDelegate::showMenu(UsageFigures const& figures, std::string_view unit)
{
    auto const volume = [this, unit](double value) { return formattedUsageStringWithUsageValue(value, unit); };
    outlets_.downloadedMenuItem->title.set(labelled("DOWNLOADED_QUOTA", volume(figures.downloaded)));
    outlets_.freeDownloadedMenuItem->title.set(labelled("DOWNLOADED_GRACE", volume(figures.graceDownloaded)));
    outlets_.totalUsageMenuItem->title.set(labelled("TOTAL_USAGE", volume(figures.overallTotal)));
    outlets_.usageCapMenuItem->title.set(labelled("USAGE_CAP", capped(figures.cap, figures, unit)));
    outlets_.remainingUsageMenuItem->title.set(labelled("REMAINING_USAGE", capped(figures.remaining, figures, unit)));

    outlets_.usageCapMenuItem->hidden.set(!outlets_.usageCapToggle.on.get());
    outlets_.remainingUsageMenuItem->hidden.set(!outlets_.remainingUsageToggle.on.get());
    outlets_.lastUpdateMenuItem->hidden.set(!outlets_.lastUpdateToggle.on.get());
    outlets_.nextUpdateMenuItem->hidden.set(!outlets_.nextUpdateToggle.on.get());
}

std::string AppDelegate::statusTitle(UsageFigures const& figures, std::string_view unit) const
{
    switch (outlets_.statusBarDropdown.indexOfSelectedItem.get()) {
    case 0:
        return formattedUsageStringWithUsageValue(figures.usedTotal, unit);
    case 1:
        return formattedUsageStringWithUsageValue(figures.graceTotal, unit);
    case 2:
        return formattedUsageStringWithUsageValue(figures.overallTotal, unit);
    case 3:
        return capped(figures.remaining, figures, unit);
    default:
        return "Error";
    }
}
