// SPDX-License-Identifier: MIT
#pragma once

#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "platform/Application.h"
#include "platform/BackgroundQueues.h"
#include "platform/Bundle.h"
#include "platform/DateFormatter.h"
#include "platform/LoginItem.h"
#include "platform/NotificationCenter.h"
#include "platform/Platform.h"
#include "platform/UrlLoader.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"
#include "storage/CacheData.h"
#include "storage/SettingsKeys.h"
#include "tests/support/ManualRunLoop.h"
#include "tests/support/TemporaryFolder.h"
#include "ui/MainLayout.h"

#include <gtest/gtest.h>

#include <map>

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

/// Queues whose tasks a test runs explicitly, in any order.
struct ManualQueues final : platform::BackgroundQueues {
    bool async(std::string const& /*label*/, platform::Task task) override
    {
        if (!isFull)
            tasks.push_back(std::move(task));
        return !isFull;
    }

    void run(std::size_t position)
    {
        auto const task = tasks.at(position);
        tasks.erase(tasks.begin() + static_cast<std::ptrdiff_t>(position));
        task();
    }

    std::vector<platform::Task> tasks;
    bool isFull = false;
};

/// A provider that gives the replies set by a test, and fails otherwise.
struct ScriptedLoader final : platform::UrlLoader {
    std::optional<std::string> load(std::string const& url) override
    {
        ++requests;
        return replies.contains(url) ? std::optional(replies.at(url)) : std::nullopt;
    }

    std::map<std::string, std::string> replies;
    std::size_t requests = 0;
};

/// Writes down what the program asks of the desktop.
struct RecordedDesktop final : platform::Application,
                               platform::Workspace,
                               platform::NotificationCenter,
                               platform::LoginItem {
    void activateIgnoringOtherApps() override { calls.emplace_back("activate"); }
    void terminate() override { calls.emplace_back("terminate"); }
    bool open(std::string const& url) override
    {
        calls.push_back("open " + url);
        return hasBrowser;
    }
    void setDelegate(platform::NotificationCenterDelegate* newDelegate) override { delegate = newDelegate; }
    void deliver(platform::UserNotification const& note) override { calls.push_back("notify " + note.title); }
    void removeDelivered(platform::NotificationId id) override { calls.push_back("remove " + std::to_string(id)); }

    bool isEnabled() const override { return startsAtLogin; }
    bool setEnabled(bool enabled) override
    {
        startsAtLogin = enabled && !isDiskFull;
        return !isDiskFull;
    }

    Texts calls;
    platform::NotificationCenterDelegate* delegate = nullptr;
    bool startsAtLogin = false;
    bool isDiskFull = false;
    bool hasBrowser = true;
};

/// Writes down what it is to load and to run; a test plays the page, which speaks of an error whatever it is asked.
struct ScriptedEngine final : platform::WebEngine {
    void load(std::string const& url) override { urls.push_back(url); }
    bool isLoading() const override { return loading; }
    void run(std::string const& script) override { scripts.push_back(script); }
    void evaluate(std::string const& /*script*/, platform::WebView::Completion completion) override
    {
        pending.push_back(std::move(completion));
    }

    /// The page answers every script, and those that follow from the answers.
    void answer()
    {
        for (; !pending.empty(); pending.pop_front())
            pending.front()(true);
    }

    bool loading = false;
    Texts urls;
    Texts scripts;
    std::deque<platform::WebView::Completion> pending;
};

/// The whole core on virtual time, from settings and cache files on disk to the models that a user would see.
class ControllerTest : public ::testing::Test {
protected:
    static constexpr int firstButton = platform::Alert::firstButtonReturn;
    static constexpr char const* home = "Home - K1";
    static constexpr char const* cottage = "Cottage - K2";
    static constexpr char const* lookupAddress = "https://www.tarvo.example/account/usage/api?request=key";

    ControllerTest()
    {
        // Assumes an earlier launch of this version; tests of the launch undo this.
        defaults.set(settings::lastInstalledVersion, bundle.shortVersion());
        setReply("K1", 10);
        setReply("K2", 20);
        setReply("K3", 30);
    }

    /// Launches the program with the current settings. Nothing queued has run yet.
    void launch()
    {
        controller.reset();
        layout.reset();
        outlets.emplace();
        layout.emplace(*outlets, bundle, defaults);
        controller.emplace(platform, *outlets);
        layout->wire(*controller);
        controller->applicationDidFinishLaunching();
    }

    /// Runs all that is queued and all background work, until nothing is left.
    void settle()
    {
        for (runLoop.runQueued(); !queues.tasks.empty(); runLoop.runQueued())
            queues.run(0);
    }

    void launchAndSettle()
    {
        launch();
        settle();
    }

    /// Launches it on these connections, of which the first one is selected.
    void launchWith(Texts const& entries)
    {
        defaults.set(settings::tarvoKeys, platform::Array(entries.begin(), entries.end()));
        defaults.set(settings::tarvoKeySelected, entries.front());
        launchAndSettle();
    }

    /// Advances time, and runs everything that falls due.
    void advance(platform::Seconds duration)
    {
        runLoop.advance(duration);
        settle();
    }

    void refresh()
    {
        controller->updateButton();
        settle();
    }

    static std::string addressOf(std::string const& key)
    {
        return "https://tarvo.example/account/usage/api?key=" + key;
    }

    /// What the provider answers for a key: a report with so many gigabytes in all, of which 40 percent are free.
    void setReply(std::string const& key, int gigabytes)
    {
        auto const volume = [gigabytes](int tenths) {
            return "<download>" + std::to_string(gigabytes * tenths) + "00000000</download>";
        };
        loader.replies[addressOf(key)]
            = "<r><used>" + volume(6) + "</used><grace>" + volume(4) + "</grace><total>" + volume(10) + "</total></r>";
    }

    void failReply(char const* key) { loader.replies.erase(addressOf(key)); }

    /// How often the provider has been asked, once all has come to rest.
    std::size_t requests() { return requestsAfter({}); }
    std::size_t requestsAfter(platform::Seconds duration)
    {
        advance(duration);
        return loader.requests;
    }

    platform::Array stored() const { return *defaults.get<platform::Array>(settings::tarvoKeys); }

    std::string const& title() { return controller->usageStatusItem().title.get(); }
    std::string const& lastLine() const { return outlets->lastUpdateMenuItem->title.get(); }
    std::string const& nextLine() const { return outlets->nextUpdateMenuItem->title.get(); }
    std::string lastUpdate(platform::Date date) const { return "Last update: " + dates.string(date); }
    std::string nextUpdate(platform::Date date) const { return "Next update: " + dates.string(date); }
    std::string textOf(char const* key) const { return bundle.localizedString(key); }
    platform::MenuItem& connection(std::size_t position) { return *outlets->connectionMenu.items().at(position); }

    /// The visible lines of a menu, each with its check mark.
    static Texts linesOf(platform::Menu const& menu)
    {
        Texts lines;
        for (auto const& item : menu.items()) {
            if (!item->hidden.get())
                lines.push_back((item->on.get() ? "* " : "") + item->title.get());
        }
        return lines;
    }

    /// The text of the alert on a window, if any.
    static std::string alertOn(platform::Window const& window)
    {
        auto const* const alert = std::get_if<std::shared_ptr<platform::Alert const>>(&window.attachedSheet.get());
        return alert ? (*alert)->messageText : std::string();
    }

    CacheData cache() const { return { folder.path(), "net.tarvo.UsageMeter", runLoop }; }
    platform::Date at(int hour, int minute) const { return midnight + 1h * hour + 1min * minute; }

    platform::Date const midnight { std::chrono::sys_days(std::chrono::year(2026) / 3 / 10) };
    TemporaryFolder folder;
    ManualRunLoop runLoop { at(10, 0) };
    ManualQueues queues;
    ScriptedLoader loader;
    RecordedDesktop desktop;
    platform::Bundle bundle = *platform::Bundle::open(USAGE_METER_BUNDLE, { "en" });
    platform::UserDefaults defaults { folder.path() / "settings" / "preferences.plist", runLoop };
    platform::Platform platform { runLoop, queues, defaults, loader, bundle, desktop, desktop, &desktop, &desktop,
        folder.path() };
    platform::DateFormatter dates { platform.dateLocale };

    // Recreated by each launch.
    std::optional<Outlets> outlets;
    std::optional<MainLayout> layout;
    std::optional<AppDelegate> controller;
};

/// The same, launched on two connections.
struct LaunchedTest : ControllerTest {
    LaunchedTest() { launchWith({ home, cottage }); }
};
