// SPDX-License-Identifier: MIT
// Reads the real program over the accessibility bus, as a screen reader does.
#include "tests/support/AccessibleTree.h"
#include "tests/support/RunningProgramTest.h"

struct AccessibilityTest : RunningProgramTest {
    AccessibilityTest()
    {
        program_.setVariable("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
        startScreen();
        program_.startWith({ home, cottage }, "60");
        EXPECT_TRUE(waitForTitle("57.3GB"));
    }

    /// An object of a window, once it shows.
    Accessible find(std::string const& window, std::string const& role, std::string const& name)
    {
        Accessible found;
        EXPECT_TRUE(QTest::qWaitFor([&] {
            all_ = tree_.window(window);
            auto const is = [&](Accessible const& each) { return each.role == role && each.name == name; };
            auto const place = std::ranges::find_if(all_, is);
            found = place == all_.end() ? Accessible() : *place;
            return !found.name.empty();
        })) << role
            << ' ' << name;
        return found;
    }

    /// "role: name" of all that says something in the window that was read last, in the order of reading.
    Texts said() const
    {
        Texts texts;
        for (auto const& each : all_) {
            if (!each.name.empty())
                texts.push_back(each.role + ": " + each.name);
        }
        return texts;
    }

    void press(char const* window, char const* role, char const* name) { tree_.act(find(window, role, name)); }

    void pick(char const* shown, char const* wanted)
    {
        press(preferences, "combo box", shown);
        press(preferences, "list item", wanted);
    }

    template <typename T> bool waitForStored(char const* key, T const& value)
    {
        return QTest::qWaitFor([&] {
            auto const bytes = platform::readFile(program_.settingsFile);
            auto const settings = platform::readPropertyList(bytes.value_or("")).value_or(platform::Dictionary {});
            auto const* const found = platform::entry<T>(settings, key);
            return found && *found == value;
        });
    }

    static constexpr char const* preferences = "Usage Meter Preferences";
    static constexpr char const* sheet = "Add a Connection";
    AccessibleTree tree_;
    std::vector<Accessible> all_;
};

TEST_F(AccessibilityTest, AWindowIsReadInTheOrderOfItsLines)
{
    ASSERT_TRUE(click("Preferences…"));
    find(preferences, "label", "Version 1.1.0");
    EXPECT_EQ(said(),
        (Texts { "dialog: Usage Meter Preferences", "label: Connection and cap", "label: Connection:",
            "combo box: Home - secretOne", "push button: Add…", "push button: Remove…", "label: Usage cap in GB:",
            "text: Usage cap in GB:", "label: A number with a point, such as 250 or 2.5. Empty for no cap.",
            "push button: Use This Connection", "label: Settings", "label: Update:", "combo box: Every 2 hours",
            "label: Status area shows:", "combo box: All traffic", "label: Show in the menu:", "check box: Usage cap",
            "check box: Remaining", "check box: Last update", "check box: Next update",
            "check box: Show nicknames only", "label: Program:", "check box: Start at login",
            "push button: Delete Saved Reports", "label: Version 1.1.0" }));

    ASSERT_TRUE(click("Usage Window"));
    auto const level = find("Usage Meter - Home", "progress bar", "Share of the cap used");
    EXPECT_EQ(level.description, "93% of the cap, in the critical zone");
    auto figures = said();
    // The dates are those of the menu.
    figures.resize(figures.size() - 3);
    EXPECT_EQ(figures,
        (Texts { "dialog: Usage Meter - Home", "label: All traffic", "label: In the status area: 57.3GB",
            "label: Download", "label: Upload", "label: Total", "label: Counted against the cap",
            "label: Download counted against the cap: 52.35GB", "label: Upload counted against the cap: 3.46GB",
            "label: Total counted against the cap: 55.8GB", "label: Free of charge",
            "label: Download free of charge: 1.2GB", "label: Upload free of charge: 0.3GB",
            "label: Total free of charge: 1.5GB", "label: All traffic", "label: All traffic: 57.3GB",
            "progress bar: Share of the cap used", "label: Share of the cap used: 93%",
            "label: Used:", "label: Total counted against the cap: 55.8GB",
            "label: Usage cap:", "label: Usage cap: 60GB", "label: Remaining:", "label: Remaining: 4.2GB" }));
}

TEST_F(AccessibilityTest, AnAssistiveProgramsHandIsAppliedAndStored)
{
    ASSERT_TRUE(click("Preferences…"));
    for (auto const& [name, key, isOn] :
        { std::tuple("Usage cap", settings::showUsageCap, false), { "Remaining", settings::showRemainingUsage, false },
            { "Last update", settings::showLastUpdate, false }, { "Next update", settings::showNextUpdate, false },
            { "Show nicknames only", settings::showOnlyNicknames, true },
            { "Usage cap", settings::showUsageCap, true } }) {
        press(preferences, "check box", name);
        EXPECT_TRUE(waitForStored(key, isOn)) << name;
    }
    press(preferences, "check box", "Start at login");
    auto const loginItem = program_.settingsFile.parent_path().parent_path() / "autostart"
        / (std::string(program_.identifier) + ".desktop");
    EXPECT_TRUE(waitFor([&loginItem] { return std::filesystem::exists(loginItem); }));

    pick("Every 2 hours", "Every 4 hours");
    EXPECT_TRUE(waitForStored(settings::hourUpdateInterval, std::int64_t { 4 }));
    pick("All traffic", "Free of charge");
    EXPECT_TRUE(waitForTitle("1.5GB"));
    pick("Home - secretOne", "Cottage - secretTwo");
    EXPECT_TRUE(waitForStored(settings::tarvoKeySelected, std::string(cottage)));
    tree_.write(find(preferences, "text", "Usage cap in GB:"), "75");
    press(preferences, "push button", "Use This Connection");
    EXPECT_TRUE(waitFor([this] { return std::ranges::count(lines(), "Usage cap: 75GB") == 1; }));

    ASSERT_TRUE(click("Preferences…"));
    press(preferences, "push button", "Add…");
    // The lookup that opened with it is over.
    find(sheet, "label", "This is the key for your current connection.");
    tree_.write(find(sheet, "text", "Usage key:"), "secretOne");
    press(sheet, "push button", "Add");
    EXPECT_TRUE(waitForStored(settings::tarvoKeySelected, std::string(" - secretOne")));
    EXPECT_TRUE(waitFor([this] { return std::ranges::count(lines(), "  * Connection 3") == 1; }));
    ASSERT_TRUE(click("Usage Window"));
    find("Usage Meter", "dialog", "Usage Meter");
}
