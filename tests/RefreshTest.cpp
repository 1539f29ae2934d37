// SPDX-License-Identifier: MIT
#include "platform/AtomicFile.h"
#include "storage/KeyEntry.h"
#include "tests/support/ControllerTest.h"

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
    EXPECT_EQ(desktop.notified, (Texts { "Usage updated" }));
    failReply("K1");
    advance(2h);
    EXPECT_EQ(desktop.notified.size(), 1U);
    setReply("K1", 10);
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
    outlets->autoRetrieveCodeButton.userClicked();
    EXPECT_EQ(alertOn(outlets->window), bundle.localizedString("AUTO_FAILURE_TITLE"));
    controller->viewDailyUsageDataButton({});
    EXPECT_EQ(alertOn(outlets->detailedUsage.window), bundle.localizedString("USAGE_DETAIL_ERROR_LOAD_TITLE"));
    controller->showPreferences();
    queues.isFull = false;
    advance(30s);
    EXPECT_EQ(title(), "10GB");
}

// Refreshes are asked for and answered in any order, while connections are picked, added and removed.
TEST_F(RefreshTest, AThousandOverlappingRefreshesShowTheLastAnswerAndSaveEachUnderItsOwnKey)
{
    std::minstd_rand random(2026); // NOLINT(*-msc51-cpp): the same in every run
    auto const oneOf = [&random](std::size_t count) { return random() % count; };
    auto const entries = [this] { return outlets->tarvoUsageKeysComboBox.items.get().size(); };
    auto const ask = [&](std::size_t number) {
        if (number % 20 == 0 && entries() < 5) {
            controller->addKeyWithNickname("Room", "A" + std::to_string(number));
            controller->updateButton();
        } else if (number % 20 == 10 && entries() > 2) {
            outlets->removeKeyButton.userClicked();
            outlets->window.userAnswered(1000);
        } else if (oneOf(2) == 0) {
            connection(oneOf(entries())).userClicked();
        } else {
            controller->updateButton();
        }
    };
    std::map<std::string, std::string> lastOf;
    Texts asked { "K1" };
    launch();
    for (std::size_t number = 1; number < 1000 || !asked.empty(); ++number) {
        if (number < 1000) {
            ask(number);
            asked.push_back(*KeyEntry::parse(*controller->getCurrentlySelectedKey()).key);
            ASSERT_EQ(queues.tasks.size(), asked.size());
            EXPECT_EQ(title(), "Please wait…");
        }
        if (number < 1000 && oneOf(8) < 4)
            continue;
        auto const position = oneOf(asked.size());
        auto const key = asked[position];
        asked.erase(asked.begin() + static_cast<std::ptrdiff_t>(position));
        auto const gigabytes = static_cast<int>(2 + number % 900);
        bool const answers = oneOf(5) != 0;
        setReply(key, gigabytes);
        if (!answers)
            failReply(key.c_str());

        auto const before = requests();
        queues.run(position);
        runLoop.runQueued();
        if (requests() == before) {
            EXPECT_EQ(title(), lastOf[key]) << "of the cache";
        } else if (answers) {
            lastOf[key] = std::to_string(gigabytes) + "GB";
            EXPECT_EQ(title(), lastOf[key]);
            auto const file = platform::readFile(cache().getCacheDirectory() / key);
            EXPECT_NE(file->find('>' + std::to_string(gigabytes * 8) + "00000000<"), std::string::npos);
        } else {
            EXPECT_EQ(title(), "No data");
        }
    }
    refresh();
    advance(1min);
    EXPECT_EQ(runLoop.timers(), 1U) << "the next refresh";
}
