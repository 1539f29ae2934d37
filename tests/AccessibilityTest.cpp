// SPDX-License-Identifier: MIT
// The real program as a screen reader finds it: over the accessibility bus.
#include "tests/support/AccessibleTree.h"
#include "tests/support/RunningProgramTest.h"

#include <QTest>

#include <set>

struct AccessibilityTest : RunningProgramTest {
    AccessibilityTest() { program_.setVariable("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1"); }

    /// Reads a window once something in it has the focus, or without a wait for that.
    std::vector<Accessible> read(std::string const& title, bool hasFocus = true)
    {
        std::vector<Accessible> all;
        EXPECT_TRUE(QTest::qWaitFor([&] {
            all = tree_.window(title);
            return !all.empty() && (!hasFocus || std::ranges::count(all, true, &Accessible::isFocused) > 0);
        })) << title;
        return all;
    }

    /// "role: name" of all that says something, in the order of reading.
    static Texts said(std::vector<Accessible> const& all)
    {
        Texts texts;
        for (auto const& each : all) {
            if (!each.name.empty())
                texts.push_back(each.role + ": " + each.name);
        }
        return texts;
    }

    /// What can be reached by the keyboard has a name; each button and check box has a key of its own beside it.
    static void expectKeys(std::vector<Accessible> const& all)
    {
        std::set<std::string> keys;
        for (auto const& each : all) {
            EXPECT_TRUE(!each.isFocusable || !each.name.empty()) << each.role;
            if (each.role != "push button" && each.role != "check box")
                continue;
            EXPECT_TRUE(each.keys.starts_with("Alt+")) << each.name << ' ' << each.keys;
            EXPECT_TRUE(each.isFocusable && keys.insert(each.keys).second) << each.name << ' ' << each.keys;
        }
    }

    Accessible const& find(std::vector<Accessible> const& all, std::string const& name) const
    {
        auto const found = std::ranges::find(all, name, &Accessible::name);
        return found == all.end() ? nothing_ : *found;
    }

    /// Reads the sheet on the preferences once the lookup that opened with it is over.
    std::vector<Accessible> readSheet()
    {
        std::vector<Accessible> all;
        EXPECT_TRUE(QTest::qWaitFor([&] {
            all = tree_.window("Add a Connection");
            return !find(all, "This is the key for your current connection.").name.empty();
        }));
        return all;
    }

    Accessible findIn(std::vector<Accessible> const& all, std::string const& role, std::string const& name) const
    {
        auto const found
            = std::ranges::find_if(all, [&](Accessible const& each) { return each.role == role && each.name == name; });
        return found == all.end() ? nothing_ : *found;
    }

    Accessible const nothing_;
    AccessibleTree tree_;
};

TEST_F(AccessibilityTest, EveryWindowSaysWhatItShowsAndHowToReachIt)
{
    startScreen();
    program_.startWith({ home, cottage }, "60");
    ASSERT_TRUE(waitForTitle("57.3GB"));

    ASSERT_TRUE(click("Preferences…"));
    auto const preferences = read("Usage Meter Preferences");
    EXPECT_EQ(said(preferences),
        (Texts { "dialog: Usage Meter Preferences", "label: Connection and cap", "label: Connection:",
            "combo box: Home - secretOne", "push button: Add…", "push button: Remove…", "label: Usage cap in GB:",
            "text: Usage cap in GB:", "label: A number with a point, such as 250 or 2.5. Empty for no cap.",
            "push button: Use This Connection", "label: Settings", "label: Update:", "combo box: Every 2 hours",
            "label: Status area shows:", "combo box: All traffic", "label: Show in the menu:", "check box: Usage cap",
            "check box: Remaining", "check box: Last update", "check box: Next update",
            "check box: Show nicknames only", "label: Program:", "check box: Start at login",
            "push button: Delete Saved Reports", "label: Version 1.1.0" }));
    expectKeys(preferences);

    tree_.act(find(preferences, "Remove…"));
    auto const alert = read("Remove this connection?");
    EXPECT_TRUE(find(alert, "Cancel").isFocused);
    expectKeys(alert);
    tree_.act(find(alert, "Cancel"));

    tree_.act(find(preferences, "Add…"));
    auto const sheet = readSheet();
    EXPECT_EQ(said(sheet),
        (Texts { "dialog: Add a Connection",
            "label: Your provider gives you a usage key. You can find it in the account section of the provider’s "
            "site.",
            "label: Usage key:", "text: Usage key:", "push button: Look It Up",
            "label: This is the key for your current connection.", "label: Nickname:", "text: Nickname:",
            "push button: How to Get a Key", "push button: Cancel", "push button: Add" }));
    expectKeys(sheet);
    tree_.act(find(sheet, "Cancel"));

    ASSERT_TRUE(click("Usage Window"));
    auto const usage = read("Usage Meter - Home");
    auto figures = said(usage);
    // The dates are those of the menu, and the button is looked at below.
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
    expectKeys(usage);
    auto const& level = find(usage, "Share of the cap used");
    EXPECT_EQ(level.description, "93% of the cap, in the critical zone");
    EXPECT_EQ(tree_.number(level, "CurrentValue"), 93);
    EXPECT_EQ(tree_.number(level, "MaximumValue"), 100);

    ASSERT_TRUE(click("Daily Usage"));
    expectKeys(read("Daily Usage", false));
}

TEST_F(AccessibilityTest, AnAssistiveProgramsHandIsAppliedAndStored)
{
    startScreen();
    program_.startWith({ home, cottage }, "60");
    ASSERT_TRUE(waitForTitle("57.3GB"));
    ASSERT_TRUE(click("Preferences…"));
    auto const preferences = read("Usage Meter Preferences");
    auto const stored = [this]<typename T>(char const* key, T const& value) {
        return QTest::qWaitFor([&] {
            auto const bytes = platform::readFile(program_.settingsFile);
            auto const settings = platform::readPropertyList(bytes.value_or("")).value_or(platform::Dictionary {});
            auto const* const found = platform::entry<T>(settings, key);
            return found && *found == value;
        });
    };
    for (auto const& [name, key] : { std::pair("Usage cap", settings::showUsageCap),
             { "Remaining", settings::showRemainingUsage }, { "Last update", settings::showLastUpdate },
             { "Next update", settings::showNextUpdate }, { "Show nicknames only", settings::showOnlyNicknames } }) {
        bool const isOnAfterwards = name == std::string_view("Show nicknames only");
        tree_.act(findIn(preferences, "check box", name));
        EXPECT_TRUE(stored(key, isOnAfterwards)) << name;
    }
    tree_.act(findIn(preferences, "check box", "Usage cap"));
    tree_.act(findIn(preferences, "check box", "Start at login"));
    auto const loginItem = program_.settingsFile.parent_path().parent_path() / "autostart"
        / (std::string(program_.identifier) + ".desktop");
    EXPECT_TRUE(waitFor([&loginItem] { return std::filesystem::exists(loginItem); }));

    auto const pick = [&](char const* shown, char const* wanted) {
        tree_.act(findIn(preferences, "combo box", shown));
        Accessible line;
        ASSERT_TRUE(QTest::qWaitFor([&] {
            line = findIn(read("Usage Meter Preferences", false), "list item", wanted);
            return !line.name.empty();
        })) << wanted;
        tree_.act(line);
    };
    pick("Every 2 hours", "Every 4 hours");
    EXPECT_TRUE(stored(settings::hourUpdateInterval, std::int64_t { 4 }));
    pick("All traffic", "Free of charge");
    EXPECT_TRUE(waitForTitle("1.5GB"));
    pick("Home - secretOne", "Cottage - secretTwo");
    EXPECT_TRUE(stored(settings::tarvoKeySelected, std::string("Cottage - secretTwo")));
    tree_.write(findIn(preferences, "text", "Usage cap in GB:"), "75");
    tree_.act(findIn(preferences, "push button", "Use This Connection"));
    EXPECT_TRUE(waitFor([this] { return std::ranges::count(lines(), "Usage cap: 75GB") == 1; }));

    ASSERT_TRUE(click("Preferences…"));
    tree_.act(findIn(read("Usage Meter Preferences", false), "push button", "Add…"));
    auto const sheet = readSheet();
    tree_.write(findIn(sheet, "text", "Usage key:"), "secretOne");
    tree_.act(findIn(sheet, "push button", "Add"));
    EXPECT_TRUE(stored(settings::tarvoKeySelected, std::string(" - secretOne")));
    EXPECT_TRUE(waitFor([this] { return std::ranges::count(lines(), "  * Connection 3") == 1; }));
    ASSERT_TRUE(click("Usage Window"));
    read("Usage Meter");
}
