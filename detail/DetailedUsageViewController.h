// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Date.h"
#include "platform/RunLoop.h"
#include "platform/WebView.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {
struct Platform;
}
class ProviderAddresses;
struct DetailedUsageLayout;

/// Owns the window that shows the provider's own day-by-day page of a month, cut down to its usage section. Made when
/// it is first asked for, and kept for the rest of the run; main thread only.
class DetailedUsageViewController final : private platform::WebViewDelegate {
public:
    DetailedUsageViewController(platform::Platform& platform, DetailedUsageLayout& layout);

    // The window

    /// Shows the window and loads the present month.
    void doShowUsageWindow();
    /// The user picked a month: it is loaded unless another one is picked soon.
    void changeMonth();
    void doChangeMonth();
    /// Loads the picker's month.
    void doReload();
    void doBeginLoadUsage();
    /// Loads the month of a date; of the present one for none.
    void doBeginLoadUsageWithDate(std::optional<platform::Date> date);
    void exitFullScreenAction();
    void windowWillEnterFullScreen();
    void windowWillExitFullScreen();
    /// Tells that a load failed, and lets the user try again or close the window.
    void doDisplayErrorPromptWithWebView(platform::LoadError andError);
    /// Closes the window once no sheet stands on it.
    void doCloseWindow();

    // The page

    /// Colours the page after the window's light or dark appearance.
    void updateDarkAppearance();

private:
    void didStartProvisionalLoadForFrame() override;
    void didFinishLoadForFrame() override;
    void didFailProvisionalLoadWithError(platform::LoadError error) override;
    void didFailLoadWithError(platform::LoadError error) override;
    platform::NavigationPolicy decidePolicyForNavigationAction(std::string_view url) override;

    void windowDidLoad();
    void boundMonthPicker();
    void setLoading(bool loading);
    /// The scripts that a finished load calls for, in their order.
    std::vector<std::string> restylingScripts();
    void showPage();
    void reportFailureNotice();
    /// Runs a script and goes on with whether its value is true, unless another load has begun by then.
    void evaluate(std::string const& script, std::function<void(bool isTrue)> next);

    std::string text(std::string_view key) const;
    ProviderAddresses addresses() const;

    platform::Platform& platform_;
    DetailedUsageLayout& layout_;

    /// The pending change to another month.
    std::unique_ptr<platform::Timer> changeMonthTimer_;
    std::unique_ptr<platform::Timer> closeTimer_;
    /// The window was shown before.
    bool secondRun_ = false;
    /// The page of the current load has its banner.
    bool didAlreadySetInformativeTitle_ = false;
    bool selectedMonthIsCurrentMonth_ = false;
    /// Counts the loads, to tell the answers of an older one.
    unsigned load_ = 0;

    std::vector<platform::Subscription> observations_;
};
