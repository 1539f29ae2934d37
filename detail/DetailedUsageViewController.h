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

/// Owns the window that shows the provider's daily usage page of a month, reduced to its usage section. Created on
/// first use and kept until the program ends. Main thread only.
class DetailedUsageViewController final : private platform::WebViewDelegate {
public:
    DetailedUsageViewController(platform::Platform& platform, DetailedUsageLayout& layout);

    // The window

    /// Shows the window and loads the current month.
    void doShowUsageWindow();
    /// Handles the user's pick of a month, and loads it unless another one is picked soon.
    void changeMonth();
    void doChangeMonth();
    /// Loads the selected month.
    void doReload();
    void doBeginLoadUsage();
    /// Loads the month of a date, by default the current month.
    void doBeginLoadUsageWithDate(std::optional<platform::Date> date);
    void exitFullScreenAction();
    void windowWillEnterFullScreen();
    void windowWillExitFullScreen();
    /// Reports that a load failed, and lets the user retry or close the window.
    void doDisplayErrorPromptWithWebView(platform::LoadError andError);
    /// Closes the window once it has no sheet.
    void doCloseWindow();

    // The page

    /// Colours the page to match the window's light or dark appearance.
    void updateDarkAppearance();

private:
    void didStartProvisionalLoadForFrame() override;
    void didFinishLoadForFrame() override;
    void didFailProvisionalLoadWithError(platform::LoadError error) override;
    void didFailLoadWithError(platform::LoadError error) override;
    platform::NavigationPolicy decidePolicyForNavigationAction(std::string_view url) override;

    void windowDidLoad();
    void limitMonthPicker();
    void setLoading(bool loading);
    /// The scripts to run after a load, in order.
    std::vector<std::string> restylingScripts();
    void showPage();
    void reportFailureNotice();
    /// Runs a script and passes on whether its value is true, unless another load has begun by then.
    void evaluate(std::string const& script, std::function<void(bool isTrue)> next);

    std::string text(std::string_view key) const;
    ProviderAddresses addresses() const;

    platform::Platform& platform_;
    DetailedUsageLayout& layout_;

    /// The pending change to another month.
    std::unique_ptr<platform::Timer> changeMonthTimer_;
    std::unique_ptr<platform::Timer> closeTimer_;
    /// Whether the window has been shown before.
    bool secondRun_ = false;
    /// Whether the loaded page has its banner.
    bool didAlreadySetInformativeTitle_ = false;
    bool selectedMonthIsCurrentMonth_ = false;
    /// Counts the loads, so that answers for an older one can be recognized.
    unsigned load_ = 0;

    std::vector<platform::Subscription> observations_;
};
