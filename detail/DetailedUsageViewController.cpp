// SPDX-License-Identifier: MIT
#include "detail/DetailedUsageViewController.h"

#include "detail/DetailedUsageLayout.h"
#include "detail/PageScripts.h"
#include "platform/BackgroundQueues.h"
#include "platform/Bundle.h"
#include "platform/Calendar.h"
#include "platform/Platform.h"
#include "services/ProviderAddresses.h"

#include <utility>

namespace {

using namespace std::chrono_literals;

// Gives the user time to scroll past several months.
constexpr platform::Seconds monthChangeDelay = 500ms;
constexpr platform::Seconds closingPoll = 200ms;
constexpr int monthsBack = 12;

constexpr char const* descriptionKey(platform::LoadError error)
{
    switch (error) {
    case platform::LoadError::Unreachable:
        return "LOAD_ERROR_UNREACHABLE";
    case platform::LoadError::NameNotResolved:
        return "LOAD_ERROR_NAME";
    case platform::LoadError::CertificateNotTrusted:
        return "LOAD_ERROR_CERTIFICATE";
    case platform::LoadError::Stopped:
        return "LOAD_ERROR_STOPPED";
    case platform::LoadError::PageLost:
        return "LOAD_ERROR_PAGE_LOST";
    case platform::LoadError::EngineMissing:
        return "LOAD_ERROR_ENGINE_MISSING";
    case platform::LoadError::EngineOfAnotherBuild:
        return "LOAD_ERROR_ENGINE_OF_ANOTHER_BUILD";
    case platform::LoadError::EngineNotIsolated:
        return "LOAD_ERROR_ENGINE_NOT_ISOLATED";
    case platform::LoadError::BadAnswer:
        break;
    }
    return "LOAD_ERROR_ANSWER";
}

}

DetailedUsageViewController::DetailedUsageViewController(platform::Platform& platform, DetailedUsageLayout& layout)
    : platform_(platform)
    , layout_(layout)
{
}

void DetailedUsageViewController::windowDidLoad()
{
    layout_.usageWebView.delegate = this;
    observations_.push_back(
        layout_.window.effectiveAppearance.observeChanges([this](platform::Appearance) { updateDarkAppearance(); }));
    observations_.push_back(layout_.window.fullScreen.observeChanges(
        [this](bool entering) { entering ? windowWillEnterFullScreen() : windowWillExitFullScreen(); }));
    // Alerts of a closed window must not reappear when it is opened again.
    observations_.push_back(layout_.window.visible.observeChanges([this](bool visible) {
        if (!visible)
            layout_.window.endAlerts();
    }));
    layout_.exitFullScreen.action = [this](platform::Sender) { exitFullScreenAction(); };
    layout_.usageMonthPicker.action = [this] { changeMonth(); };

    layout_.exitFullScreen.title.set(text("DETAILED_USAGE_EXIT_FULLSCREEN"));
    layout_.window.title.set(text("DETAILED_USAGE_TITLE"));
    layout_.loadingText.text.set(text("DETAILED_USAGE_LOADING"));
    layout_.usageMonthPicker.locale = platform_.dateLocale;
    limitMonthPicker();
}

// Repeated each time the window is shown, since the program may run into another month.
void DetailedUsageViewController::limitMonthPicker()
{
    auto const now = platform_.runLoop.now();
    layout_.usageMonthPicker.minDate.set(platform::addingMonths(now, -monthsBack));
    layout_.usageMonthPicker.maxDate.set(now);
    layout_.usageMonthPicker.dateValue.set(now);
}

void DetailedUsageViewController::doShowUsageWindow()
{
    if (!secondRun_)
        windowDidLoad();
    // Closing the window has ended the page.
    setLoading(true);
    layout_.window.makeKeyAndOrderFront();
    if (secondRun_) {
        limitMonthPicker();
        doReload();
    } else {
        secondRun_ = true;
        doBeginLoadUsage();
    }
    layout_.progressIndicator.startAnimation();
}

void DetailedUsageViewController::changeMonth()
{
    changeMonthTimer_ = platform_.runLoop.after(monthChangeDelay, [this] { doChangeMonth(); });
}

void DetailedUsageViewController::doChangeMonth()
{
    doBeginLoadUsageWithDate(layout_.usageMonthPicker.dateValue.get());
}

void DetailedUsageViewController::doReload() { doBeginLoadUsageWithDate(layout_.usageMonthPicker.dateValue.get()); }

void DetailedUsageViewController::doBeginLoadUsage() { doBeginLoadUsageWithDate({}); }

void DetailedUsageViewController::doBeginLoadUsageWithDate(std::optional<platform::Date> date)
{
    closeTimer_.reset();
    layout_.window.endAlerts();
    didAlreadySetInformativeTitle_ = false;
    // The calendar functions are for the main thread only.
    auto const now = platform_.runLoop.now();
    auto const month = platform::calendarMonth(date.value_or(now), platform_.dateLocale);
    bool const isCurrentMonth = month == platform::calendarMonth(now, platform_.dateLocale);
    bool const started = platform_.backgroundQueues.async("detailedusage_background", [this, month, isCurrentMonth] {
        platform_.runLoop.perform([this, isCurrentMonth, url = addresses().usagePage(month.year, month.month)] {
            selectedMonthIsCurrentMonth_ = isCurrentMonth;
            // An earlier load may have ended meanwhile.
            didAlreadySetInformativeTitle_ = false;
            layout_.usageWebView.load(url);
        });
    });
    if (!started)
        didFailProvisionalLoadWithError(platform::LoadError::Stopped);
}

platform::NavigationPolicy DetailedUsageViewController::decidePolicyForNavigationAction(std::string_view url)
{
    return addresses().admitsNavigation(url) ? platform::NavigationPolicy::Use : platform::NavigationPolicy::Ignore;
}

void DetailedUsageViewController::didStartProvisionalLoadForFrame()
{
    ++load_;
    setLoading(true);
    layout_.loadingText.text.set(text("DETAILED_USAGE_LOADING"));
}

void DetailedUsageViewController::setLoading(bool loading)
{
    layout_.usageMonthPicker.hidden.set(loading);
    layout_.usageWebView.hidden.set(loading);
    layout_.progressIndicator.hidden.set(!loading);
    layout_.loadingText.hidden.set(!loading);
}

void DetailedUsageViewController::didFinishLoadForFrame()
{
    // A frame that is still loading will report again.
    if (layout_.usageWebView.isLoading())
        return;
    for (auto const& script : restylingScripts())
        layout_.usageWebView.run(script);
    // Its result arrives after all earlier scripts have run.
    evaluate(pageScripts::nothing(), [this](bool) { showPage(); });
}

std::vector<std::string> DetailedUsageViewController::restylingScripts()
{
    std::vector scripts { pageScripts::restyling() };
    if (selectedMonthIsCurrentMonth_) {
        scripts.push_back(pageScripts::todayHighlight());
        scripts.push_back(pageScripts::todayLegend());
    }
    if (!std::exchange(didAlreadySetInformativeTitle_, true))
        scripts.push_back(pageScripts::banner(text("DETAILED_USAGE_WARNING")));
    return scripts;
}

void DetailedUsageViewController::showPage()
{
    setLoading(false);
    updateDarkAppearance();
    evaluate(pageScripts::hasFailureNotice(), [this](bool hasNotice) {
        if (hasNotice)
            reportFailureNotice();
    });
}

void DetailedUsageViewController::reportFailureNotice()
{
    auto title = text("USAGE_ERROR_TITLE");
    // A page may keep reloading itself.
    if (layout_.window.hasAlert(title))
        return;
    layout_.window.beginSheet({ .messageText = std::move(title),
        .informativeText = text("USAGE_ERROR_MESSAGE"),
        .buttons = { text("DISMISS") },
        .style = platform::Alert::Style::Critical });
}

void DetailedUsageViewController::evaluate(std::string const& script, std::function<void(bool isTrue)> next)
{
    layout_.usageWebView.evaluate(script, [this, load = load_, goOn = std::move(next)](bool isTrue) {
        if (load == load_)
            goOn(isTrue);
    });
}

void DetailedUsageViewController::updateDarkAppearance()
{
    auto const colors = platform_.systemColors(layout_.window.effectiveAppearance.get());
    for (auto const& script : { pageScripts::pageBackground(colors.windowBackground),
             pageScripts::pageText(colors.text), pageScripts::boxBackground(colors.controlBackground),
             pageScripts::rowBackground(colors.controlBackground, selectedMonthIsCurrentMonth_) })
        layout_.usageWebView.run(script);
}

void DetailedUsageViewController::didFailProvisionalLoadWithError(platform::LoadError error)
{
    doDisplayErrorPromptWithWebView(error);
}

void DetailedUsageViewController::didFailLoadWithError(platform::LoadError error)
{
    doDisplayErrorPromptWithWebView(error);
}

void DetailedUsageViewController::doDisplayErrorPromptWithWebView(platform::LoadError andError)
{
    auto title = text("USAGE_DETAIL_ERROR_LOAD_TITLE");
    if (layout_.window.hasAlert(title))
        return;
    layout_.window.beginSheet(
        { .messageText = std::move(title),
            .informativeText = text("USAGE_DETAIL_ERROR_LOAD_MESSAGE") + " " + text(descriptionKey(andError)),
            .buttons = { text("RETRY"), text("REMOVE_KEY_CONFIRM_DONT_REMOVE_BUTTON") },
            .style = platform::Alert::Style::Critical },
        [this](int returnCode) {
            if (returnCode == platform::Alert::firstButtonReturn)
                return doReload();
            // An alert waiting behind this one would keep the window open.
            layout_.window.endAlerts();
            doCloseWindow();
        });
}

void DetailedUsageViewController::doCloseWindow()
{
    if (std::holds_alternative<std::monostate>(layout_.window.attachedSheet.get()))
        layout_.window.orderOut();
    else
        closeTimer_ = platform_.runLoop.after(closingPoll, [this] { doCloseWindow(); });
}

void DetailedUsageViewController::exitFullScreenAction() { layout_.window.toggleFullScreen(); }

void DetailedUsageViewController::windowWillEnterFullScreen() { layout_.exitFullScreen.hidden.set(false); }

void DetailedUsageViewController::windowWillExitFullScreen() { layout_.exitFullScreen.hidden.set(true); }

std::string DetailedUsageViewController::text(std::string_view key) const
{
    return platform_.bundle.localizedString(key);
}

ProviderAddresses DetailedUsageViewController::addresses() const
{
    return ProviderAddresses(platform_.bundle.providerHost());
}
