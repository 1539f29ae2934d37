// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/ControllerTest.h"
#include "windows/MainWindows.h"
#include "windows/Palettes.h"

#include <QtWidgets>

/// A provider's page that reports an error, whatever it is asked.
struct FailingPage final : platform::WebEngine {
    void load(std::string const& /*url*/) override { }
    bool isLoading() const override { return false; }
    void run(std::string const& /*script*/) override { }
    void evaluate(std::string const& /*script*/, platform::WebView::Completion completion) override
    {
        completion(true);
    }
};

/// Goes through every window, alert and state of the program as its controller shows them, and looks at each.
class EveryWindowTest : public ControllerTest {
protected:
    ~EveryWindowTest() override { windows_.reset(); }

    /// Checks everything on the screen now.
    virtual void look() = 0;

    void showAll()
    {
        applyLook({ appearance_, std::nullopt });
        // Keys and nicknames are numbers, and dates are in another script, so that only our texts have Latin letters.
        platform.dateLocale = "ja_JP";
        showFirstStart();
        showUsage();
        showPreferences();
        showDailyUsage();
        showConversion();
    }

    void open()
    {
        windows_.reset();
        launch();
        windows_ = std::make_unique<MainWindows>(*outlets, bundle, runLoop, "");
        for (auto* const window : windowsOf(*outlets))
            window->effectiveAppearance.set(appearance_);
        settle();
    }

    void lookAtAlertOf(platform::Window& window)
    {
        EXPECT_NE(alertOn(window), "");
        look();
        window.userAnswered(platform::Alert::dismissedReturn);
    }

    void showFirstStart()
    {
        open();
        look();
        outlets->confirmKeyButton.userClicked();
        lookAtAlertOf(outlets->addKeyWindow);
        outlets->autoRetrieveCodeButton.userClicked();
        look();
        settle();
        lookAtAlertOf(outlets->addKeyWindow);
        loader.replies["https://www.tarvo.example/account/usage/api?request=key"] = "<r><key>22</key></r>";
        outlets->autoRetrieveCodeButton.userClicked();
        settle();
        look();
        outlets->usageID.userTyped("{");
        look();
        desktop.hasBrowser = false;
        outlets->getUsageCodeButton.userClicked();
        lookAtAlertOf(outlets->addKeyWindow);
        setReply("11", 10);
        for (auto const* const nickname : { "1", "2", "2" }) {
            outlets->addKeyButton.userClicked();
            outlets->keyNewNickname.userTyped(nickname);
            outlets->usageID.userTyped("11");
            outlets->confirmKeyButton.userClicked();
        }
        lookAtAlertOf(outlets->addKeyWindow);
        outlets->cancelButton.userClicked();
        settle();
    }

    void showUsage()
    {
        windows_->showUsageWindowWithMenu(desktop);
        look();
        outlets->usageLimit.userTyped("100");
        outlets->useConnectionButton.userClicked();
        look();
        settle();
        advance(1s);
        look();
        outlets->updateIntervalPopupButton.userSelected(0);
        settle();
        look();
        failReply("11");
        refresh();
        look();
    }

    void showPreferences()
    {
        controller->showPreferences();
        for (auto const* const cap : { "1,000", "." }) {
            outlets->usageLimit.userTyped(cap);
            look();
        }
        outlets->clearCacheButton.userClicked();
        advance(2s);
        look();
        outlets->removeKeyButton.userClicked();
        lookAtAlertOf(outlets->window);
        desktop.isDiskFull = true;
        outlets->startAtLoginToggle.userToggled(true);
        lookAtAlertOf(outlets->window);
    }

    void showDailyUsage()
    {
        using platform::LoadError;
        auto& detailed = outlets->detailedUsage;
        outlets->detailedUsageButton.userClicked();
        detailed.usageWebView.engine = &page_;
        detailed.window.toggleFullScreen();
        QCoreApplication::processEvents();
        settle();
        // This must work on a screen of any size.
        detailed.window.toggleFullScreen();
        look();
        detailed.exitFullScreen.hidden.set(false);
        for (auto const error : { LoadError::Unreachable, LoadError::NameNotResolved, LoadError::CertificateNotTrusted,
                 LoadError::BadAnswer, LoadError::Stopped, LoadError::PageLost, LoadError::EngineMissing,
                 LoadError::EngineOfAnotherBuild, LoadError::EngineNotIsolated }) {
            detailed.usageWebView.delegate->didFailLoadWithError(error);
            look();
            detailed.window.userAnswered(platform::Alert::firstButtonReturn);
            settle();
        }
        detailed.usageWebView.delegate->didFinishLoadForFrame();
        lookAtAlertOf(detailed.window);
    }

    void showConversion()
    {
        defaults.remove(settings::tarvoKeys);
        defaults.set(settings::tarvoId, "33");
        open();
        lookAtAlertOf(outlets->window);
    }

    platform::Appearance appearance_ = platform::Appearance::Light;
    std::unique_ptr<MainWindows> windows_;

private:
    FailingPage page_;
};
