// SPDX-License-Identifier: MIT
// The desktop side of the program: a real event loop, real widgets and a real bus.
#include "desktop/ActivationToken.h"
#include "desktop/ColorScheme.h"
#include "desktop/FreedesktopNotifications.h"
#include "storage/SettingsKeys.h"
#include "tests/support/FakeService.h"
#include "tests/support/WindowsTest.h"
#include "ui/MainLayout.h"
#include "windows/LevelBar.h"

#include <QDBusMetaType>
#include <QDBusVariant>

#include <atomic>
#include <ctime>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

using namespace std::chrono_literals;
using platform::Alert;

namespace {

struct DesktopTest : testing::Test {
    DesktopRunLoop loop;
    ToolkitLoop const around { loop };
    Bus bus { loop };
    Texts told;
};

TEST_F(DesktopTest, EachTaskRunsInItsTurn)
{
    std::thread([this] { loop.perform([this] { told.emplace_back("thread's"); }); }).join();
    loop.perform([this] { told.emplace_back("queued"); });
    EXPECT_TRUE(told.empty()) << "a task may not run inside the call that queues it";
    ASSERT_TRUE(QTest::qWaitFor([this] { return told.size() == 2; }));
    auto const first = loop.now() - 90min;
    auto const hourly = loop.repeat(first, 1h, [this] { told.emplace_back("overdue"); });
    loop.after(5ms, [this] { told.emplace_back("cancelled"); }).reset();
    std::unique_ptr<platform::Timer> own;
    own = loop.repeat(loop.now() + 10ms, 1ms, [&] {
        own.reset();
        told.emplace_back("own");
    });
    loop.performAfter(30ms, [this] { told.emplace_back("loop's"); });
    ASSERT_TRUE(QTest::qWaitFor([this] { return told.size() == 5; }));
    EXPECT_EQ(told, (Texts { "thread's", "queued", "overdue", "own", "loop's" }));
    EXPECT_EQ(hourly->fireDate(), first + 2h);
}

/// How long the computer has slept, as the clock that counts sleep has it.
std::atomic<int> sleptMilliseconds = 0;

TEST_F(DesktopTest, ASleepIsToldOnceBeforeWhatFellDueInIt)
{
    auto const wake = loop.observeWake([this] { told.emplace_back("wake"); });
    auto const tell = [this] { told.emplace_back("timer"); };
    // The clocks are not read at once, so a little counts as no sleep.
    for (auto const& [slept, expected] : { std::pair(3'600'000, Texts { "wake", "timer" }), { 40, { "timer" } } }) {
        for (bool const isByWallClock : { true, false }) {
            auto const timer = isByWallClock ? loop.repeat(loop.now() + 1ms, 1h, tell) : loop.after(1ms, tell);
            sleptMilliseconds += slept;
            ASSERT_TRUE(QTest::qWaitFor([this] { return !told.empty() && told.back() == "timer"; }));
            EXPECT_EQ(std::exchange(told, {}), expected);
        }
    }
}

/// Both windows as the program sets them up.
struct MainWindowsTest : WindowsTest {
    MainWindowsTest()
    {
        windows_ = std::make_unique<MainWindows>(outlets_, bundle_, loop_, "");
        outlets_.window.makeKeyAndOrderFront();
        outlets_.monitorWindow.makeKeyAndOrderFront();
    }

    static QWidget& window() { return *widgetOf<QLineEdit>("usageLimit").window(); }
    static QWidget& usageWindow() { return *widgetOf<LevelBar>("usageBar").window(); }

    MainLayout layout_ { outlets_, bundle_, defaults_ };
};

TEST_F(MainWindowsTest, AFieldHoldsOneLineOfWhatTheUserTypes)
{
    // What the program sets keeps its line breaks until the user edits it.
    outlets_.usageLimit.text.set("1\n5\n");
    auto& field = widgetOf<QLineEdit>("usageLimit");
    EXPECT_EQ(field.text(), "1\n5\n");
    field.setCursorPosition(2);
    QTest::keyClicks(&field, QStringLiteral("00"));
    QGuiApplication::clipboard()->setText(QStringLiteral("\t.\r\n"));
    field.paste();
    EXPECT_EQ(outlets_.usageLimit.text.get(), "100.5");
    EXPECT_EQ(field.cursorPosition(), 4);
}

TEST_F(MainWindowsTest, WhatIsOnlyPassedOverIsNotPicked)
{
    int actions = 0;
    outlets_.updateIntervalPopupButton.action = [&actions] { ++actions; };
    auto& box = widgetOf<QComboBox>("updateIntervalPopupButton");
    QWheelEvent wheel({}, {}, {}, { 0, -120 }, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&box, &wheel);
    // A closed list opens first, and a letter finds its line there.
    QTest::keyClick(&box, Qt::Key_E);
    EXPECT_TRUE(box.view()->isVisible());
    EXPECT_EQ(actions, 0);
    QTest::keyClick(box.view(), Qt::Key_Return);
    QCoreApplication::sendPostedEvents(&box, QEvent::MetaCall);
    EXPECT_EQ(actions, 1);
    EXPECT_EQ(*defaults_.get<std::int64_t>(settings::hourUpdateInterval), 1);
}

TEST_F(MainWindowsTest, AMinimizedWindowComesBackWhenItIsChosen)
{
    window().showMinimized();
    outlets_.window.makeKeyAndOrderFront();
    EXPECT_FALSE(window().isMinimized());
}

TEST_F(MainWindowsTest, WhatTheProgramSetsIsShownAsItIs)
{
    auto const width = window().sizeHint().width();
    std::string const endless(10'000, 'W');
    outlets_.tarvoUsageKeysComboBox.addItems({ endless });
    outlets_.tarvoUsageKeysComboBox.selectItemAtIndex(0);
    outlets_.usageLimit.text.set(endless);
    outlets_.downloadUsage.text.set(endless);
    outlets_.showNotificationsToggle.on.set(true);
    outlets_.removeKeyButton.enabled.set(false);
    outlets_.usageCapText.text.set("<b>1</b> & more");
    platform::animate(loop_, { &outlets_.usageBar.opacity }, 1, 20ms, [] { });
    QCoreApplication::processEvents();
    EXPECT_EQ(window().sizeHint().width(), width) << "overlong texts do not break the layout";
    EXPECT_LT(usageWindow().sizeHint().width(), 1000);
    EXPECT_TRUE(widgetOf<QCheckBox>("showNotificationsToggle").isChecked());
    EXPECT_FALSE(widgetOf<QPushButton>("removeKeyButton").isEnabled());
    EXPECT_EQ(widgetOf<QLabel>("usageCapText").textFormat(), Qt::PlainText);
    auto const* const level = qobject_cast<QGraphicsOpacityEffect*>(widgetOf<LevelBar>("usageBar").graphicsEffect());
    EXPECT_TRUE(QTest::qWaitFor([level] { return level->opacity() == 1; }));
    EXPECT_FALSE(defaults_.contains(settings::showNotificationsMenu)) << "it is not taken for the user's";
}

TEST_F(MainWindowsTest, AWindowComesBackWhereItsUserClosedIt)
{
    QRect const left(120, 90, 640, 500);
    usageWindow().setGeometry(left);
    usageWindow().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&usageWindow()));
    QTest::keyClick(&usageWindow(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(outlets_.monitorWindow.visible.get());
    windows_.reset();
    defaults_.flush();

    platform::UserDefaults stored(folder_.path() / "preferences.plist", loop_);
    Outlets outlets;
    MainLayout const layout(outlets, bundle_, stored);
    MainWindows const windows(outlets, bundle_, loop_, "");
    outlets.monitorWindow.makeKeyAndOrderFront();
    EXPECT_EQ(usageWindow().geometry(), left);
}

TEST_F(MainWindowsTest, AWindowThatIsTooLargeForItsScreenScrollsEachTimeItIsOpened)
{
    auto const usual = QApplication::font();
    QApplication::setFont(QFont(usual.family(), 40));
    windows_ = std::make_unique<MainWindows>(outlets_, bundle_, loop_, "");
    for (int openings = 0; openings < 2; ++openings) {
        EXPECT_NE(window().findChild<QScrollArea*>(), nullptr);
        EXPECT_LT(window().height(), window().screen()->availableGeometry().height());
        outlets_.window.userClosed();
        outlets_.window.visible.set(true);
    }
    QApplication::setFont(usual);
}

TEST_F(MainWindowsTest, AnAlertOfPlainTextIsAnsweredByKey)
{
    Texts const two { "Fish & Chips", "Cancel" };
    std::vector<std::tuple<Texts, bool, Qt::Key, int>> const cases {
        { two, false, Qt::Key_Escape, Alert::firstButtonReturn + 1 },
        { two, false, Qt::Key_Return, Alert::firstButtonReturn },
        { two, true, Qt::Key_Return, Alert::firstButtonReturn + 1 },
        { { "Fish" }, false, Qt::Key_Escape, Alert::dismissedReturn },
    };
    for (auto const& [buttons, isDestructive, key, expected] : cases) {
        int answered = -1;
        // An alert on a window that is not shown waits for it.
        outlets_.window.orderOut();
        outlets_.window.beginSheet(
            { "<b>bold</b> & one", std::string(10'000, 'W'), buttons, Alert::Style::Warning, isDestructive },
            [&answered](int answer) { answered = answer; });
        EXPECT_EQ(window().findChild<QMessageBox*>(), nullptr);
        outlets_.window.makeKeyAndOrderFront();
        auto* const sheet = window().findChild<QMessageBox*>();
        ASSERT_NE(sheet, nullptr);
        EXPECT_TRUE(sheet->width() < 1000 && sheet->height() < 600) << "overlong texts stay on the screen";
        for (char const* const label : { "qt_msgbox_label", "qt_msgbox_informativelabel" })
            EXPECT_EQ(sheet->findChild<QLabel*>(QLatin1String(label))->textFormat(), Qt::PlainText) << label;
        QTest::keyClick(sheet, key);
        EXPECT_EQ(answered, expected);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST_F(MainWindowsTest, AnUninvitedUsageWindowGoesWithTheMenu)
{
    auto const& shown = outlets_.monitorWindow.visible;
    auto const isMenuShown = [] { return usageWindow().layout()->menuBar()->isVisible(); };
    for (bool const isInvited : { true, false }) {
        outlets_.monitorWindow.visible.set(isInvited);
        auto const size = usageWindow().size();
        for (int i = 0; i < 2; ++i)
            windows_->showUsageWindowWithMenu(application_);
        EXPECT_TRUE(shown.get());
        EXPECT_TRUE(isMenuShown());
        QCoreApplication::processEvents();
        windows_->leaveMenuToStatusArea();
        EXPECT_EQ(usageWindow().size(), size);
        EXPECT_EQ(shown.get(), isInvited);
        EXPECT_FALSE(isMenuShown());
    }
}

TEST_F(MainWindowsTest, AMarkInTheWindowsMenuStandsWhereTheProgramHasIt)
{
    windows_->showUsageWindowWithMenu(application_);
    auto& menu = *usageWindow().layout()->menuBar()->actions().constFirst()->menu();
    auto const one = std::make_shared<platform::MenuItem>();
    auto const other = std::make_shared<platform::MenuItem>();
    one->on.set(true);
    int clicks = 0;
    other->action = [&clicks](platform::Sender) { ++clicks; };
    outlets_.dropDownMenu.setItems({ one, other });
    ASSERT_TRUE(QTest::qWaitFor([&menu] { return menu.actions().size() == 2; }));
    menu.actions()[1]->trigger();
    EXPECT_EQ(clicks, 1);
    EXPECT_TRUE(menu.actions()[0]->isChecked() && !menu.actions()[1]->isChecked());
}

TEST_F(MainWindowsTest, TheAddKeySheetNeedsOnlyTheKeyboard)
{
    Texts done;
    outlets_.confirmKeyButton.action = [&](platform::Sender) { done.push_back(outlets_.usageID.text.get()); };
    outlets_.addKeyWindow.closeAction = [&] { outlets_.window.endSheet(outlets_.addKeyWindow); };
    outlets_.window.beginSheet(outlets_.addKeyWindow);
    auto& field = widgetOf<QLineEdit>("usageID");
    auto& sheet = *field.window();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&sheet));
    EXPECT_EQ(sheet.focusWidget(), &field);
    outlets_.usageID.text.set("what was looked up is typed over");
    QTest::keyClicks(&field, QStringLiteral("K1"));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(done, (Texts { "K1" }));
    QTest::keyClick(&sheet, Qt::Key_Escape);
    EXPECT_FALSE(sheet.isVisible());
}

TEST_F(DesktopTest, EachPreferenceOfAPortalIsFollowed)
{
    using Settings = QMap<QString, QVariantMap>;
    using enum platform::Appearance;
    static constexpr char const* appearance = "org.freedesktop.appearance";
    static constexpr char const* gnome = "org.gnome.desktop.a11y.interface";
    qDBusRegisterMetaType<Settings>();
    std::vector<platform::Appearance> looks;
    ColorScheme const scheme(bus, [&looks](Look const& look) { looks.push_back(look.appearance); });
    // It prefers dark and, as GNOME says it, high contrast.
    FakeService portal(
        "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop", [](QDBusMessage const& call) {
            EXPECT_EQ(call.arguments(), QVariantList { QStringList({ appearance, gnome }) });
            return QVariantList { QVariant::fromValue(
                Settings { { appearance, { { "color-scheme", 1U } } }, { gnome, { { "high-contrast", true } } } }) };
        });
    ASSERT_TRUE(QTest::qWaitFor([&looks] { return looks.size() == 1; }));
    // The portal's own word on contrast goes before GNOME's.
    std::vector<std::tuple<char const*, char const*, QVariant, platform::Appearance>> const changes {
        { gnome, "high-contrast", false, Dark },
        { appearance, "color-scheme", 2U, Light },
        { gnome, "high-contrast", true, HighContrastLight },
        { appearance, "contrast", 0U, Light },
        { appearance, "contrast", 1U, HighContrastLight },
    };
    std::vector expected { HighContrastDark };
    for (auto const& [space, key, value, look] : changes) {
        portal.notify("org.freedesktop.portal.Settings", "SettingChanged",
            { QLatin1String(space), QLatin1String(key), QVariant::fromValue(QDBusVariant(value)) });
        expected.push_back(look);
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return looks == expected; }));
}

struct ActivationLog final : platform::NotificationCenterDelegate {
    void didActivateNotification(platform::NotificationId id) override
    {
        activated.push_back(std::to_string(id) + takeActivationToken());
    }
    Texts activated;
};

TEST_F(DesktopTest, ANotificationTakesThePlaceOfTheLastUnlessThatHasGone)
{
    constexpr auto name = "org.freedesktop.Notifications";
    unsigned next = 41;
    FakeService service(name, "/org/freedesktop/Notifications", [&next](QDBusMessage const& call) {
        auto const replaced = call.arguments().value(1).toUInt();
        return QVariantList { replaced != 0 || call.member() != "Notify" ? replaced : next++ };
    });
    auto const center = FreedesktopNotifications::connectTo(bus, { "Meter", "meter.desktop", "meter", "Show" });
    ActivationLog log;
    center->setDelegate(&log);
    auto const deliver = [&](unsigned replaced, unsigned id) {
        auto const count = service.calls.size();
        center->deliver({ "Fish & Chips", "1 <b>bold</b> & one" });
        EXPECT_TRUE(QTest::qWaitFor([&] { return service.calls.size() > count; }));
        EXPECT_EQ(service.calls.back().arguments().mid(0, 6),
            (QVariantList { "Meter", replaced, "meter", "Fish & Chips", "1 &lt;b&gt;bold&lt;/b&gt; &amp; one",
                QStringList { "default", "Show" } }));
        // Only a click on its own one counts.
        service.notify(name, "ActionInvoked", { 7U, "default" });
        service.notify(name, "ActionInvoked", { id, "another" });
        service.notify(name, "ActivationToken", { id, "token" });
        service.notify(name, "ActionInvoked", { id, "default" });
        EXPECT_TRUE(QTest::qWaitFor([&log] { return !log.activated.empty(); }));
        EXPECT_EQ(std::exchange(log.activated, {}), (Texts { std::to_string(id) + "token" }));
    };
    deliver(0, 41);
    deliver(41, 41);
    center->removeDelivered(41);
    ASSERT_TRUE(QTest::qWaitFor([&] { return service.calls.back().member() == "CloseNotification"; }));
    deliver(0, 42);
}

}

/// Replaces the C library's function, so that a test can make the computer sleep.
extern "C" int readClock(clockid_t clock, timespec* time) __asm__("clock_gettime");

int readClock(clockid_t clock, timespec* time)
{
    auto const result = static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
    if (clock == CLOCK_BOOTTIME)
        time->tv_nsec += sleptMilliseconds * 1'000'000L;
    return result;
}
