// SPDX-License-Identifier: MIT
#include "services/RetrieveKey.h"
#include "storage/UsageCaps.h"
#include "tests/support/ControllerTest.h"

struct KeyManagementTest : LaunchedTest {
    void add(std::string const& nickname, std::string const& key)
    {
        outlets->addKeyButton.userClicked();
        outlets->keyNewNickname.userTyped(nickname);
        outlets->usageID.userTyped(key);
        outlets->confirmKeyButton.userClicked();
    }

    void remove(int answer = firstButton)
    {
        outlets->removeKeyButton.userClicked();
        outlets->window.userAnswered(answer);
    }
};

TEST_F(KeyManagementTest, RefusesAnEntryThatWouldBeAmbiguous)
{
    std::string const blank = textOf("FAILURE_BLANK_CODE"), twice = textOf("FAILURE_KEY_EXISTS");
    for (auto const& [nickname, key, refusal] : { std::tuple("Home", "", blank), { "Home", "K-2", blank },
             { "Ho-me", "K2", blank }, { "Home", "K 2", blank }, { "Home", "K1", twice }, { "", "K2", "" },
             // A pasted line brings its end with it.
             { "My & <b>_\thome_</b>\u2028", "K3\r\n", "" } }) {
        add(nickname, key);
        EXPECT_EQ(alertOn(outlets->addKeyWindow), refusal) << nickname << key;
        outlets->addKeyWindow.userAnswered(firstButton);
        outlets->cancelButton.userClicked();
        EXPECT_FALSE(outlets->addKeyWindow.visible.get());
    }
    EXPECT_EQ(stored(), (platform::Array { home, cottage, " - K2", "My & <b>_home_</b> - K3" }));
    outlets->onlyKeyNicknamesToggle.userToggled(true);
    EXPECT_EQ(connection(2).shownTitle(), "Connection 3");
}

TEST_F(KeyManagementTest, ALookupSpeaksOnlyToOneWhoAsksForIt)
{
    outlets->addKeyButton.userClicked();
    EXPECT_EQ(outlets->usageIDStatus.text.get(), textOf("LOOKUP_UNDER_WAY"));
    settle();
    EXPECT_EQ(outlets->usageIDStatus.text.get(), textOf("AUTO_FAILURE_TITLE"));
    EXPECT_EQ(alertOn(outlets->addKeyWindow), "");

    // Two at once, both late: the sheet has gone, and one alert where it stood is for both. Then nobody waits any more.
    for (bool const waits : { true, false }) {
        controller->showPreferences();
        outlets->autoRetrieveCodeButton.userClicked();
        outlets->autoRetrieveCodeButton.userClicked();
        outlets->addKeyWindow.userClosed();
        if (!waits)
            outlets->window.userClosed();
        settle();
        EXPECT_EQ(alertOn(outlets->window), waits ? textOf("AUTO_FAILURE_TITLE") : "");
        outlets->window.userAnswered(firstButton);
        EXPECT_EQ(alertOn(outlets->window), "");
    }
}

TEST_F(KeyManagementTest, TheSheetSaysWhatKeyCannotWork)
{
    auto const& status = outlets->usageIDStatus.text;
    // What is looked up is taken as it is.
    for (auto const& [key, typed, found] :
        { std::tuple("K2", "", "LOOKUP_FOUND"), { "K%3\n", "KEY_UNUSUAL", "KEY_UNUSUAL" } }) {
        outlets->usageID.userTyped(key);
        EXPECT_EQ(status.get(), textOf(typed));
        loader.replies[lookupAddress] = std::string("<r><key>") + key + "</key></r>";
        outlets->autoRetrieveCodeButton.userClicked();
        settle();
        EXPECT_EQ(outlets->usageID.text.get(), key);
        EXPECT_EQ(status.get(), textOf(found));
    }
}

TEST_F(KeyManagementTest, ClosingThePreferencesConfirmsWhatWasPickedOrTyped)
{
    auto const requestsAfterClosing = [this] {
        controller->showPreferences();
        outlets->window.userClosed();
        EXPECT_FALSE(outlets->window.visible.get());
        return requests();
    };
    EXPECT_EQ(requestsAfterClosing(), 1U) << "nothing was changed";
    outlets->tarvoUsageKeysComboBox.userSelected(1);
    EXPECT_EQ(requestsAfterClosing(), 2U);
    EXPECT_EQ(title(), "20GB");
    outlets->usageLimit.userTyped("40");
    EXPECT_EQ(requestsAfterClosing(), 2U) << "the cache has it";
    EXPECT_EQ(outlets->usageCapMenuItem->title.get(), "Usage cap: 40GB");
    EXPECT_EQ(UsageCaps(defaults).usageCapForKey(cottage), "40");
}

TEST_F(KeyManagementTest, RemovingGoesOnWithTheFirstEntryAsIfTheOtherHadNeverBeen)
{
    connection(1).userClicked();
    settle();
    defaults.set(settings::usageCapValues, platform::Dictionary { { cottage, "40" }, { home, "90" } });
    for (int const answer : { firstButton + 1, platform::Alert::dismissedReturn, firstButton }) {
        EXPECT_EQ(stored().size(), 2U);
        remove(answer);
    }
    EXPECT_EQ(requests(), 2U) << "the cache has the first one";
    EXPECT_EQ(title(), "10GB");
    EXPECT_EQ(stored(), platform::Array { home });
    EXPECT_EQ(*defaults.get<std::string>(settings::tarvoKeySelected), home);
    EXPECT_EQ(outlets->usageLimit.text.get(), "90");
    EXPECT_EQ(UsageCaps(defaults).usageCapForKey(cottage), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(cache().getCacheDirectory() / "K2"));
    EXPECT_TRUE(outlets->changeConnectionMenuItem->hidden.get()) << "one entry is no choice";
}

TEST_F(KeyManagementTest, TheQuestionWhetherToRemoveEndsWhenAnotherConnectionIsSelected)
{
    for (auto const& select : std::vector<std::function<void()>> { [this] { connection(1).userClicked(); },
             [this] { controller->addKeyWithNickname("Office", "K3"); },
             [this] { defaults.set(settings::tarvoKeySelected, home); } }) {
        auto const entry = *controller->getCurrentlySelectedKey();
        outlets->removeKeyButton.userClicked();
        EXPECT_NE(std::get<1>(outlets->window.attachedSheet.get())->informativeText.find(entry), std::string::npos);
        outlets->window.beginSheet({ .messageText = "another alert" });
        select();
        EXPECT_EQ(alertOn(outlets->window), "another alert");
        outlets->window.userAnswered(firstButton);
    }
    EXPECT_EQ(stored().size(), 3U);
}

TEST_F(KeyManagementTest, RemovingTheLastEntryEndsAsAFreshInstallationWhateverIsUnderWay)
{
    remove();
    settle();
    outlets->usageLimit.userTyped("55");
    controller->updateButton();
    remove();
    EXPECT_EQ(title(), "…");
    // The refresh that was under way has figures for nobody, and the timer has nobody to ask for.
    EXPECT_EQ(requestsAfter(5h), 4U);
    EXPECT_EQ(title(), "…");
    EXPECT_TRUE(outlets->addKeyWindow.visible.get());
    EXPECT_EQ(outlets->usageLimit.text.get(), "");
    EXPECT_EQ(stored(), platform::Array {});
    EXPECT_FALSE(defaults.contains(settings::tarvoKeySelected));
    EXPECT_EQ(outlets->monitorWindow.title.get(), "Usage Meter");
    EXPECT_TRUE(std::filesystem::is_empty(cache().getCacheDirectory()));
}

TEST_F(KeyManagementTest, ReadsTheLookupReplyByItsOwnRules)
{
    using Key = std::optional<std::string>;
    for (auto const& [body, key] : { std::pair("<r><key>A</key><key>B</key></r>", Key("A")),
             { "<r><status>error</status><key>A</key></r>", {} }, { "<r><key>A</key><status>error</status></r>", {} },
             { "<r><status>Error</status><status> error</status><key>A</key></r>", "A" }, { "<r><key/></r>", "" },
             { "<r><key> A\n</key></r>", " A\n" }, { "<r><key>A&#66;C</key></r>", "C" },
             { "<r><key>A<![CDATA[B]]>C</key></r>", "C" }, { "<r><key><x>A</x></key></r>", {} },
             { "\n\n<?xml version='1.0'?><r><key>A</key></r>", "A" },
             { " \n<?xml version='1.0'?><r><key>A</key></r>", {} }, { "<r><key>A</key>", {} }, { "", {} } }) {
        loader.replies[lookupAddress] = body;
        EXPECT_EQ(RetrieveKey(loader, ProviderAddresses("tarvo.example")).keyForCurrentConnection(), key) << body;
    }
}
