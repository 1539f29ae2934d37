// SPDX-License-Identifier: MIT
#include "services/RetrieveKey.h"
#include "tests/support/ControllerTest.h"

struct KeyManagementTest : ControllerTest {
    static constexpr char const* lookupAddress = "https://www.tarvo.example/account/usage/api?request=key";
    static constexpr char const* office = "Office - K3";

    void add(std::string const& nickname, std::string const& key)
    {
        outlets->keyNewNickname.userTyped(nickname);
        outlets->usageID.userTyped(key);
        outlets->confirmKeyButton.userClicked();
    }

    platform::Array stored() const { return *defaults.get<platform::Array>(settings::tarvoKeys); }
    std::string textOf(char const* key) const { return bundle.localizedString(key); }
};

TEST_F(KeyManagementTest, RefusesWhatWouldMakeAnEntryAmbiguousOrIsThere)
{
    launchWith({ home });
    std::vector<std::tuple<char const*, char const*, bool>> const cases { { "Home", "", false },
        { "Home", "K-2", false }, { "Ho-me", "K2", false }, { "Home", "K 2", false }, { "", "K2", true },
        // A pasted line brings its end with it.
        { "My & <b>_\thome_</b>\u2028", "K3\r\n", true } };
    for (auto const& [nickname, key, isAccepted] : cases) {
        outlets->addKeyButton.userClicked();
        auto const count = stored().size();
        add(nickname, key);
        EXPECT_EQ(stored().size(), count + (isAccepted ? 1 : 0)) << nickname << key;
        EXPECT_EQ(outlets->addKeyWindow.visible.get(), !isAccepted);
        EXPECT_EQ(alertOn(outlets->addKeyWindow), isAccepted ? "" : textOf("FAILURE_BLANK_CODE"));
        outlets->addKeyWindow.userAnswered(1000);
        settle();
    }
    EXPECT_EQ(stored(), (platform::Array { home, " - K2", "My & <b>_home_</b> - K3" }));

    // A duplicate is refused too, but still refreshes.
    outlets->addKeyButton.userClicked();
    settle();
    auto const before = requests();
    add("Home", "K1");
    settle();
    EXPECT_EQ(alertOn(outlets->addKeyWindow), textOf("FAILURE_KEY_EXISTS"));
    EXPECT_EQ(requests(), before + 1);
    outlets->addKeyWindow.userAnswered(1000);
    outlets->usageLimit.userTyped("55");
    add("Cottage", "K1");
    settle();
    EXPECT_EQ(stored().back(), platform::Value("Cottage - K1"));
    EXPECT_EQ(outlets->usageLimit.text.get(), "");
    EXPECT_EQ(linesOf(outlets->connectionMenu).front(), home);
    EXPECT_EQ(linesOf(outlets->connectionMenu).back(), "* Cottage - K1");
}

TEST_F(KeyManagementTest, ALookupSpeaksOnlyWhenAskedAndAnswersWheneverItComes)
{
    launchWith({ home });
    outlets->addKeyButton.userClicked();
    outlets->usageID.userTyped("typed");
    settle();
    EXPECT_EQ(outlets->usageID.text.get(), "typed");
    EXPECT_EQ(alertOn(outlets->addKeyWindow), "");

    // Three at once, all late: the sheet has gone, and one alert where it stood is for all that failed.
    auto const askThreeTimes = [this] {
        for (int i = 0; i < 3; ++i)
            outlets->autoRetrieveCodeButton.userClicked();
        outlets->addKeyWindow.userClosed();
    };
    askThreeTimes();
    EXPECT_FALSE(outlets->addKeyWindow.visible.get());
    queues.run(1);
    queues.run(1);
    loader.replies[lookupAddress] = "<r><key>K2\n</key></r>";
    settle();
    EXPECT_EQ(outlets->usageID.text.get(), "K2\n") << "what is looked up is taken as it is";
    EXPECT_EQ(alertOn(outlets->window), textOf("AUTO_FAILURE_TITLE"));
    outlets->window.userAnswered(platform::Alert::firstButtonReturn);
    EXPECT_EQ(alertOn(outlets->window), "");

    // Nobody is waiting any more.
    loader.replies.clear();
    askThreeTimes();
    outlets->window.userClosed();
    settle();
    controller->showPreferences();
    EXPECT_EQ(alertOn(outlets->window), "");
}

TEST_F(KeyManagementTest, TheSheetSaysHowTheLookupGoesAndWhatKeyCannotWork)
{
    launchWith({ home });
    auto const& status = outlets->usageIDStatus.text;
    outlets->addKeyButton.userClicked();
    EXPECT_EQ(status.get(), textOf("LOOKUP_UNDER_WAY"));
    settle();
    EXPECT_EQ(status.get(), textOf("AUTO_FAILURE_TITLE"));
    for (auto const& [key, remark] : { std::pair("K{2", "KEY_UNUSUAL"), { "K2", nullptr }, { "K%2", "KEY_UNUSUAL" } }) {
        outlets->usageID.userTyped(key);
        EXPECT_EQ(status.get(), remark ? textOf(remark) : "");
    }
    loader.replies[lookupAddress] = "<r><key>K2</key></r>";
    outlets->autoRetrieveCodeButton.userClicked();
    settle();
    EXPECT_EQ(status.get(), textOf("LOOKUP_FOUND"));
}

TEST_F(KeyManagementTest, ClosingThePreferencesConfirmsWhatWasPickedOrTyped)
{
    launchWith({ home, cottage });
    auto const close = [this] {
        controller->showPreferences();
        outlets->window.userClosed();
        settle();
        EXPECT_FALSE(outlets->window.visible.get());
    };
    close();
    EXPECT_EQ(requests(), 1U) << "nothing was changed";
    outlets->tarvoUsageKeysComboBox.userSelected(1);
    close();
    EXPECT_EQ(title(), "20GB");
    outlets->usageLimit.userTyped("40");
    close();
    EXPECT_EQ(controller->usageCapForKey(cottage), "40");
    EXPECT_EQ(outlets->usageCapMenuItem->title.get(), "Usage cap: 40GB");
    EXPECT_EQ(requests(), 2U) << "the cache has it";
}

TEST_F(KeyManagementTest, RemovingSelectsTheFirstEntryAndForgetsTheRest)
{
    launchWith({ home, cottage, office });
    EXPECT_FALSE(outlets->changeConnectionMenuItem->hidden.get());
    connection(1).userClicked();
    settle();
    defaults.set(settings::usageCapValues, platform::Dictionary { { cottage, "40" }, { home, "90" } });
    using platform::Alert;
    for (int const answer : { Alert::firstButtonReturn + 1, Alert::dismissedReturn }) {
        outlets->removeKeyButton.userClicked();
        outlets->window.userAnswered(answer);
        EXPECT_EQ(stored().size(), 3U);
    }

    outlets->removeKeyButton.userClicked();
    auto const question = std::get<1>(outlets->window.attachedSheet.get())->informativeText;
    EXPECT_NE(question.find(cottage), std::string::npos) << question;
    auto const before = requests();
    outlets->window.userAnswered(Alert::firstButtonReturn);
    settle();
    EXPECT_EQ(requests(), before) << "the cache has it";
    EXPECT_EQ(stored(), (platform::Array { home, office }));
    EXPECT_EQ(*defaults.get<std::string>(settings::tarvoKeySelected), home);
    EXPECT_EQ(outlets->usageLimit.text.get(), "90");
    EXPECT_EQ(controller->usageCapForKey(cottage), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(cache().getCacheDirectory() / "K2"));
    EXPECT_EQ(linesOf(outlets->connectionMenu), (Texts { "* Home - K1", office }));
    outlets->removeKeyButton.userClicked();
    outlets->window.userAnswered(Alert::firstButtonReturn);
    EXPECT_TRUE(outlets->changeConnectionMenuItem->hidden.get()) << "one entry is no choice";
}

TEST_F(KeyManagementTest, TheQuestionWhetherToRemoveEndsWhenAnotherConnectionIsSelected)
{
    launchWith({ home, cottage });
    std::vector<std::function<void()>> const ways { [this] { connection(1).userClicked(); },
        [this] { outlets->tarvoUsageKeysComboBox.userSelected(0); },
        [this] { controller->addKeyWithNickname("Office", "K3"); },
        [this] { defaults.set(settings::tarvoKeySelected, home); } };
    for (auto const& select : ways) {
        outlets->removeKeyButton.userClicked();
        EXPECT_NE(alertOn(outlets->window), "");
        outlets->window.beginSheet({ .messageText = "another alert" });
        select();
        EXPECT_EQ(alertOn(outlets->window), "another alert");
        outlets->window.userAnswered(platform::Alert::firstButtonReturn);
    }
    EXPECT_EQ(stored(), (platform::Array { home, cottage, office }));
}

TEST_F(KeyManagementTest, RemovingTheLastEntryEndsWithAnEmptyListAndALateReportDoesNoHarm)
{
    launchWith({ home });
    outlets->usageLimit.userTyped("55");
    controller->updateButton();
    outlets->removeKeyButton.userClicked();
    outlets->window.userAnswered(1000);
    EXPECT_EQ(stored(), platform::Array {});
    EXPECT_EQ(controller->getCurrentlySelectedKey(), std::nullopt);
    EXPECT_FALSE(defaults.contains(settings::tarvoKeySelected));
    EXPECT_EQ(title(), "…");
    EXPECT_TRUE(outlets->addKeyWindow.visible.get());
    EXPECT_EQ(outlets->usageLimit.text.get(), "");
    // The refresh that was under way has figures for nobody.
    settle();
    EXPECT_EQ(title(), "…");
    EXPECT_EQ(outlets->monitorWindow.title.get(), "Usage Meter");
    EXPECT_FALSE(std::filesystem::exists(cache().getCacheDirectory() / "K1"));
    outlets->removeKeyButton.userClicked();
    EXPECT_EQ(alertOn(outlets->window), "");
}

TEST_F(KeyManagementTest, ReadsTheLookupReplyByItsOwnRules)
{
    std::vector<std::tuple<char const*, char const*, std::optional<std::string>>> const cases {
        { "the first of two", "<r><key>A</key><key>B</key></r>", "A" },
        { "an error before", "<r><status>error</status><key>A</key></r>", std::nullopt },
        { "an error after", "<r><key>A</key><status>error</status></r>", std::nullopt },
        { "another status", "<r><status>Error</status><status> error</status><key>A</key></r>", "A" },
        { "no text", "<r><key/></r>", "" },
        { "untrimmed", "<r><key> A\n</key></r>", " A\n" },
        { "the last run", "<r><key>A&#66;C</key></r>", "C" },
        { "around CDATA", "<r><key>A<![CDATA[B]]>C</key></r>", "C" },
        { "only children", "<r><key><x>A</x></key></r>", std::nullopt },
        { "blank lines before", "\n\n<?xml version='1.0'?><r><key>A</key></r>", "A" },
        { "a blank before a line break", " \n<?xml version='1.0'?><r><key>A</key></r>", std::nullopt },
        { "cut off", "<r><key>A</key>", std::nullopt },
        { "nothing", "", std::nullopt },
    };
    for (auto const& [what, body, key] : cases) {
        loader.replies[lookupAddress] = body;
        EXPECT_EQ(RetrieveKey(loader, ProviderAddresses("tarvo.example")).keyForCurrentConnection(), key) << what;
    }
}
