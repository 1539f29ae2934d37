// SPDX-License-Identifier: MIT
#include "platform/Binding.h"
#include "platform/ComboBox.h"
#include "platform/Window.h"
#include "tests/support/ManualRunLoop.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using namespace platform;

TEST(Property, AnObserverMayEndItselfSetTheValueAndOutliveTheProperty)
{
    auto number = std::make_unique<Property<int>>(1);
    std::vector<int> seen;
    // The one who sets comes first: those after it are told the newer value alone.
    auto raising = number->observe([&](int value) {
        if (value == 2)
            number->set(3);
    });
    Subscription subscription;
    subscription = number->observeChanges([&](int value) {
        seen.push_back(value);
        subscription = {};
    });
    for (int const value : { 1, 2, 4 })
        number->set(value);
    EXPECT_EQ(seen, (std::vector { 3 }));
    number.reset();
    raising = {};
}

TEST(Binding, OnlyTheUsersHandIsStoredAndWhatIsStoredShows)
{
    TemporaryFolder folder;
    ManualRunLoop runLoop { {} };
    UserDefaults defaults(folder.path() / "settings.plist", runLoop);
    defaults.set("choice", 1);
    PopUpButton choice;
    choice.items.set({ "none", "one", "two" });
    int acted = 0;
    choice.action = [&] { ++acted; };
    auto const binding = bindToSetting(defaults, "choice", choice);
    EXPECT_EQ(choice.indexOfSelectedItem.get(), 1);

    choice.indexOfSelectedItem.set(2);
    EXPECT_EQ(*defaults.get<std::int64_t>("choice"), 1);
    EXPECT_EQ(acted, 0);
    choice.userSelected(2);
    EXPECT_EQ(*defaults.get<std::int64_t>("choice"), 2);

    for (Value const& stored : { Value(0), Value(99), Value(-1), Value("two") }) {
        defaults.set("choice", stored);
        EXPECT_EQ(choice.indexOfSelectedItem.get(), 0);
    }
    EXPECT_EQ(acted, 1);
}

TEST(ComboBox, KeepsItsTextApartFromItsSelection)
{
    ComboBox box;
    std::vector<std::string> stored;
    box.store = [&](std::string const& text) { stored.push_back(text); };
    box.addItems({ "a", "b" });
    box.selectItemAtIndex(1);
    EXPECT_EQ(box.text.get(), "b");
    box.text.set("elsewhere");
    EXPECT_EQ(box.objectValueOfSelectedItem(), "b");
    box.removeAllItems();
    EXPECT_EQ(box.text.get(), "elsewhere");

    box.addItems({ "c" });
    box.selectItemAtIndex(7);
    box.userSelected(7);
    EXPECT_EQ(box.objectValueOfSelectedItem(), std::nullopt);
    EXPECT_TRUE(stored.empty());
    box.userSelected(0);
    box.userSelected(0);
    EXPECT_EQ(stored, (std::vector<std::string> { "c", "c" }));
}

TEST(Window, ShowsOneSheetAtATime)
{
    Window window;
    Window sheet;
    std::vector<int> answers;
    auto const alert = [&window] {
        auto const* const attached = std::get_if<std::shared_ptr<Alert const>>(&window.attachedSheet.get());
        return attached ? (*attached)->messageText : std::string();
    };
    window.beginSheet({ .messageText = "first" }, [&](int code) {
        answers.push_back(code);
        window.beginSheet({ .messageText = "last" });
    });
    window.beginSheet(sheet);
    window.beginSheet(sheet);
    EXPECT_EQ(alert(), "first");
    window.userAnswered(1001);
    EXPECT_EQ(window.attachedSheet.get(), Sheet(&sheet));
    EXPECT_TRUE(sheet.visible.get());
    // No alert is attached that could be answered.
    window.userAnswered(1000);
    window.endSheet(sheet);
    EXPECT_FALSE(sheet.visible.get());
    EXPECT_EQ(alert(), "last");
    window.userAnswered(1000);
    EXPECT_EQ(window.attachedSheet.get(), Sheet());
    EXPECT_EQ(answers, (std::vector { 1001 }));
}

TEST(Opacity, ALaterFadeGoesOnFromWhereItIsAndEveryFadeCompletes)
{
    ManualRunLoop runLoop { {} };
    Opacity opacity { 0.0 };
    int completed = 0;
    double target = 1.0;
    for (double const expected : { 0.5, 0.25, 0.625 }) {
        animate(runLoop, { &opacity }, target, 1s, [&] { ++completed; });
        runLoop.advance(500ms);
        EXPECT_DOUBLE_EQ(opacity.at(runLoop.uptime()), expected);
        target = 1.0 - target;
    }
    runLoop.advance(1s);
    EXPECT_EQ(opacity.at(runLoop.uptime()), 1.0);
    EXPECT_EQ(completed, 3);
}
