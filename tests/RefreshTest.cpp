// SPDX-License-Identifier: MIT
#include "storage/KeyEntry.h"
#include "tests/support/ControllerTest.h"

#include <algorithm>
#include <random>

namespace {

class RefreshTest : public ControllerTest {
protected:
    RefreshTest() { storeKeys({ home, cottage }, home); }

    std::optional<platform::Dictionary> saved(char const* key) const { return cache().retrieveCachedFileWithName(key); }
};

}

TEST_F(RefreshTest, OnlyTheTimersSuccessNotifiesAndOnlyWhileSwitchedOn)
{
    launchAndSettle();
    refresh();
    // Not even the timer's, where the cache has the report.
    controller->updateUsageWithCache(true, true);
    settle();
    EXPECT_EQ(requests(), 2U);
    EXPECT_EQ(desktop.notified, Texts {});
    advance(2h);
    EXPECT_EQ(
        desktop.notified, (Texts { "Usage updated: " + bundle.localizedString("NOTIFICATION_INFORMATIVE_TEXT") }));
    failReply("K1");
    advance(2h);
    EXPECT_EQ(desktop.notified.size(), 1U);
    setReply("K1", 10);
    advance(30s);
    EXPECT_EQ(title(), "10GB");
    EXPECT_EQ(desktop.notified.size(), 1U) << "a retry is no timer's refresh";
    outlets->showNotificationsToggle.userToggled(false);
    advance(3h);
    EXPECT_EQ(desktop.notified.size(), 1U);

    desktop.delegate->didActivateNotification(7);
    EXPECT_EQ(desktop.removed, (std::vector<platform::NotificationId> { 7 }));
    EXPECT_TRUE(outlets->monitorWindow.visible.get());
}

TEST_F(RefreshTest, AReportNeedsOneFigureToBeASuccess)
{
    auto& reply = loader.replies[addressOf("K1")];
    reply = "<usage><used><download>500000000</download></used></usage>";
    launchAndSettle();
    EXPECT_EQ(title(), "0MB");
    EXPECT_EQ(outlets->downloadUsage.text.get(), "500MB");

    auto const before = saved("K1");
    EXPECT_TRUE(before);
    reply = "<usage/>";
    refresh();
    EXPECT_EQ(title(), "No data");
    EXPECT_EQ(saved("K1"), before);
}

TEST_F(RefreshTest, WithoutAnEntryNothingHappensAtAll)
{
    launchAndSettle();
    outlets->tarvoUsageKeysComboBox.text.set({});
    refresh();
    EXPECT_EQ(nextLine(), nextUpdate(at(12, 0)));
    // The timer goes on with its period, refused each time.
    advance(5h);
    EXPECT_EQ(title(), "10GB");
    EXPECT_EQ(requests(), 1U);
}

TEST_F(RefreshTest, WithoutRoomForAnotherQueueItFailsAndTriesAgain)
{
    queues.isFull = true;
    launchAndSettle();
    EXPECT_EQ(title(), "No data");
    controller->showPreferences();
    outlets->autoRetrieveCodeButton.userClicked();
    EXPECT_EQ(alertOn(outlets->window), bundle.localizedString("AUTO_FAILURE_TITLE"));
    controller->viewDailyUsageDataButton({});
    EXPECT_EQ(alertOn(outlets->detailedUsage.window), bundle.localizedString("USAGE_DETAIL_ERROR_LOAD_TITLE"));
    queues.isFull = false;
    advance(30s);
    EXPECT_EQ(title(), "10GB");
}

TEST_F(RefreshTest, AnAnswerThatComesAfterASwitchDoesNotStayOnTheScreen)
{
    launchAndSettle();
    for (bool const answers : { true, false }) {
        controller->updateButton();
        connection(1).userClicked();
        queues.run(1);
        runLoop.runQueued();
        EXPECT_EQ(title(), "20GB");
        answers ? setReply("K1", 70) : failReply("K1");
        auto const before = requests();
        settle();
        EXPECT_EQ(title(), "20GB");
        EXPECT_EQ(requests(), before + 1) << "the cache has the other one";
        EXPECT_EQ(outlets->monitorWindow.title.get(), "Usage Meter - Cottage");
        connection(0).userClicked();
        settle();
        EXPECT_EQ(title(), "70GB") << "it was saved under its own key";
    }
}

// Refreshes are asked for and answered in any order, while connections are picked from the menu, confirmed, added and
// removed.
TEST_F(RefreshTest, OverlappingRefreshesEndWithTheSelectedConnectionOnTheScreen)
{
    std::minstd_rand random(2026); // NOLINT(*-msc51-cpp): the same in every run
    auto const oneOf = [&random](std::size_t count) { return random() % count; };
    auto const entries = [this] { return outlets->tarvoUsageKeysComboBox.items.get().size(); };
    // The key of number N has a report of 500 + N gigabytes.
    auto const gigabytesOf = [](std::string const& key) { return 500 + std::stoi(key.substr(1)); };
    for (char const* const key : { "K1", "K2" })
        setReply(key, gigabytesOf(key));
    launch();
    for (int number = 3; number < 200; ++number) {
        auto const key = "K" + std::to_string(number);
        std::vector<std::function<void()>> const actions {
            [&] { connection(oneOf(entries())).userClicked(); },
            [&] { connection(oneOf(entries())).userClicked(); },
            [&] { controller->updateButton(); },
            [&] {
                outlets->usageLimit.userTyped(std::to_string(number));
                outlets->useConnectionButton.userClicked();
            },
            [&] {
                if (entries() == 5)
                    return;
                setReply(key, gigabytesOf(key));
                controller->addKeyWithNickname("Room", key);
                controller->updateButton();
            },
            [&] {
                if (entries() == 2)
                    return;
                outlets->removeKeyButton.userClicked();
                outlets->window.userAnswered(platform::Alert::firstButtonReturn);
            },
        };
        actions[oneOf(actions.size())]();
        auto const entry = controller->getCurrentlySelectedKey().value_or("");
        auto const selected = KeyEntry::parse(entry).key.value_or("");
        bool const fails = oneOf(5) == 0;
        auto const reply = loader.replies[addressOf(selected)];
        if (fails)
            failReply(selected.c_str());
        for (auto left = oneOf(queues.tasks.size() + 1); left > 0; --left) {
            queues.run(oneOf(queues.tasks.size()));
            runLoop.runQueued();
        }
        loader.replies[addressOf(selected)] = reply;
        if (number % 10 != 0)
            continue;

        // All comes to rest.
        settle();
        advance(30s);
        EXPECT_EQ(title(), std::to_string(gigabytesOf(selected)) + "GB") << number;
        EXPECT_EQ(outlets->monitorWindow.title.get(), "Usage Meter - " + KeyEntry::parse(entry).nickname);
        auto const cap = controller->usageCapForKey(entry).value_or("");
        EXPECT_EQ(outlets->usageCapText.text.get(), cap.empty() ? "∞" : cap + "GB");
        auto const lines = linesOf(outlets->connectionMenu);
        EXPECT_EQ(std::ranges::count(lines, "* " + entry), 1);
        EXPECT_EQ(std::ranges::count(lines, '*', [](auto const& line) { return line.front(); }), 1);
        EXPECT_EQ(runLoop.timers(), 1U) << "the next refresh";
        EXPECT_EQ(*platform::entry<std::string>(saved(selected.c_str()).value(), "total:download"),
            std::to_string(gigabytesOf(selected) * 8) + "00000000");
    }
}
