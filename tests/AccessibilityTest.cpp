// SPDX-License-Identifier: MIT
// Reads and works the windows as a screen reader does, through the interfaces that the toolkit hands on to it.
#include "storage/UsageCaps.h"
#include "tests/support/ControllerTest.h"
#include "windows/MainWindows.h"

#include <QtWidgets>

namespace {

/// Each with what is said of it, "role: name".
using Objects = std::vector<std::pair<std::string, QAccessibleInterface*>>;

struct AccessibilityTest : LaunchedTest {
    static void addShowing(Objects& found, QAccessibleInterface* object)
    {
        if (object->state().invisible)
            return;
        auto const* const role = QMetaEnum::fromType<QAccessible::Role>().valueToKey(object->role());
        auto const name = object->text(QAccessible::Name).toStdString();
        if (!name.empty())
            found.emplace_back(role + (": " + name), object);
        for (int i = 0; i < object->childCount(); ++i)
            addShowing(found, object->child(i));
    }

    /// All that shows and has a name, in the order of reading.
    static Objects objects()
    {
        QCoreApplication::processEvents();
        Objects found;
        for (auto* const window : QApplication::topLevelWidgets())
            addShowing(found, QAccessible::queryAccessibleInterface(window));
        return found;
    }

    static QAccessibleInterface& find(std::string const& words)
    {
        for (auto const& [said, object] : objects()) {
            if (said == words)
                return *object;
        }
        throw std::logic_error(words);
    }

    void press(std::string const& words)
    {
        auto& object = find(words);
        auto const* const button = qobject_cast<QAbstractButton*>(object.object());
        object.actionInterface()->doAction(object.actionInterface()->actionNames().constFirst());
        // A button counts as clicked once it has come up again, and a pick takes effect after two turns.
        do
            QCoreApplication::processEvents();
        while (button && button->isDown());
        QCoreApplication::processEvents();
        settle();
    }

    static void write(char const* words, char const* text)
    {
        find(words).setText(QAccessible::Value, QString::fromUtf8(text));
    }

    void pick(std::string const& shown, std::string const& wanted)
    {
        press("ComboBox: " + shown);
        press("ListItem: " + wanted);
    }

    MainWindows windows { *outlets, bundle, runLoop, "" };
};

}

TEST_F(AccessibilityTest, EveryFigureIsReadWithItsName)
{
    loader.replies[addressOf("K1")]
        = "<r><used><download>5e9</download><upload>6e9</upload></used><grace><download>1e9</download><upload>2e9"
          "</upload></grace><total><download>8e9</download><upload>9e9</upload></total></r>";
    outlets->usageLimit.userTyped("12");
    refresh();
    controller->showUsageWindow();
    Texts said;
    for (auto const& object : objects())
        said.push_back(object.first);
    EXPECT_EQ(said,
        (Texts { "Dialog: Usage Meter - Home", "StaticText: All traffic", "StaticText: In the status area: 17GB",
            "StaticText: Download", "StaticText: Upload", "StaticText: Total", "StaticText: Counted against the cap",
            "StaticText: Download counted against the cap: 5GB", "StaticText: Upload counted against the cap: 6GB",
            "StaticText: Total counted against the cap: 11GB", "StaticText: Free of charge",
            "StaticText: Download free of charge: 1GB", "StaticText: Upload free of charge: 2GB",
            "StaticText: Total free of charge: 3GB", "StaticText: All traffic", "StaticText: All traffic: 17GB",
            "ProgressBar: Share of the cap used", "StaticText: Share of the cap used: 91.67%", "StaticText: Used:",
            "StaticText: Total counted against the cap: 11GB", "StaticText: Usage cap:", "StaticText: Usage cap: 12GB",
            "StaticText: Remaining:", "StaticText: Remaining: 1GB", "StaticText: " + lastUpdate(at(10, 0)),
            "StaticText: " + nextUpdate(at(12, 0)), "Button: Daily Usage" }));
    auto& level = find("ProgressBar: Share of the cap used");
    EXPECT_EQ(level.valueInterface()->currentValue(), 91);
    EXPECT_EQ(level.text(QAccessible::Description), "91% of the cap, in the critical zone");
}

TEST_F(AccessibilityTest, AnAssistiveProgramsHandIsAppliedAtOnce)
{
    controller->showPreferences();
    for (auto const& [name, line, isOn] : { std::tuple("Usage cap", &Outlets::usageCapMenuItem, false),
             { "Remaining", &Outlets::remainingUsageMenuItem, false },
             { "Last update", &Outlets::lastUpdateMenuItem, false },
             { "Next update", &Outlets::nextUpdateMenuItem, false },
             { "Usage cap", &Outlets::usageCapMenuItem, true } }) {
        press(std::string("CheckBox: ") + name);
        EXPECT_EQ((*outlets.*line)->hidden.get(), !isOn) << name;
    }
    press("CheckBox: Show nicknames only");
    EXPECT_EQ(connection(1).title.get(), "Cottage");
    press("CheckBox: Start at login");
    EXPECT_TRUE(desktop.startsAtLogin);
    pick("Every 2 hours", "Every 4 hours");
    EXPECT_EQ(nextLine(), nextUpdate(at(14, 0)));
    pick("All traffic", "Free of charge");
    EXPECT_EQ(title(), "4GB");
    pick(home, cottage);
    write("EditableText: Usage cap in GB:", "75");
    press("Button: Use This Connection");
    EXPECT_EQ(title(), "8GB");
    EXPECT_EQ(UsageCaps(defaults).usageCapForKey(cottage), "75");
}
