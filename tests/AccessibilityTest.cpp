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
        (Texts { "dialog: Usage Meter Preferences", "label: Connection:", "combo box: Home - secretOne",
            "push button: Add…", "push button: Remove…", "label: Usage cap in GB:", "text: Usage cap in GB:",
            "label: Update:", "combo box: Every 2 hours", "label: Status area shows:", "combo box: All traffic",
            "label: Show in the menu:", "check box: Usage cap", "check box: Remaining volume", "check box: Last update",
            "check box: Next update", "check box: Connections by nickname only", "check box: Start at login",
            "push button: Empty the Cache", "label: Version 1.0.0", "push button: Use This Connection" }));
    expectKeys(preferences);

    tree_.act(find(preferences, "Remove…"));
    auto const alert = read("Remove this connection?");
    EXPECT_TRUE(find(alert, "Remove").isFocused);
    expectKeys(alert);
    tree_.act(find(alert, "Cancel"));

    tree_.act(find(preferences, "Add…"));
    auto const sheet = read("Add a Connection");
    EXPECT_EQ(said(sheet),
        (Texts { "dialog: Add a Connection",
            "label: A usage key comes from your provider: you find it in the account section of the provider’s site.",
            "label: Usage key:", "text: Usage key:", "push button: Look It Up", "label: Nickname:", "text: Nickname:",
            "push button: How to Get a Key", "push button: Cancel", "push button: Add" }));
    expectKeys(sheet);
    tree_.act(find(sheet, "Cancel"));

    ASSERT_TRUE(click("Usage Window"));
    auto const usage = read("Usage Meter - Home");
    EXPECT_EQ(said(usage),
        (Texts { "dialog: Usage Meter - Home", "label: Download", "label: Upload", "label: Total",
            "label: Counted against the cap", "label: Download counted against the cap: 52.35GB",
            "label: Upload counted against the cap: 3.46GB", "label: Total counted against the cap: 55.8GB",
            "label: Free of charge", "label: Download free of charge: 1.2GB", "label: Upload free of charge: 0.3GB",
            "label: Total free of charge: 1.5GB", "label: All traffic", "label: All traffic: 57.3GB",
            "label: Usage cap:", "label: Usage cap: 60GB", "label: Remaining:", "label: Remaining: 4.2GB",
            "progress bar: Share of the cap used", "label: Share of the cap used: 93%", "push button: Daily Usage" }));
    expectKeys(usage);
    auto const& level = find(usage, "Share of the cap used");
    EXPECT_EQ(level.description, "93% of the cap, in the critical zone");
    EXPECT_EQ(tree_.number(level, "CurrentValue"), 93);
    EXPECT_EQ(tree_.number(level, "MaximumValue"), 100);

    ASSERT_TRUE(click("Daily Usage"));
    expectKeys(read("Daily Usage", false));
}
