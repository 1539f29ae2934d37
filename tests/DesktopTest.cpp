// SPDX-License-Identifier: MIT
// The desktop's half of the program: real event loop, real widgets, a real bus.
#include "desktop/ActivationToken.h"
#include "desktop/ColorScheme.h"
#include "desktop/FreedesktopNotifications.h"
#include "storage/SettingsKeys.h"
#include "tests/support/WindowsTest.h"
#include "ui/MainLayout.h"
#include "windows/Browser.h"
#include "windows/LevelBar.h"

#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QDesktopServices>

#include <atomic>
#include <ctime>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

using namespace std::chrono_literals;
using platform::Alert;

namespace {

TEST(DesktopRunLoop, TasksWaitTheirTurnAndTimersMayEndInTheirOwnTaskAndFireAtOnceForADatePast)
{
    DesktopRunLoop loop;
    ToolkitLoop const around(loop);
    Texts fired;
    std::thread([&] { loop.perform([&fired] { fired.emplace_back("thread's"); }); }).join();
    loop.perform([&fired] { fired.emplace_back("queued"); });
    EXPECT_TRUE(fired.empty()) << "a task may not run inside the call that queues it";
    ASSERT_TRUE(QTest::qWaitFor([&fired] { return fired.size() == 2; }));
    auto const first = loop.now() - 90min;
    auto const hourly = loop.repeat(first, 1h, [&fired] { fired.emplace_back("overdue"); });
    loop.after(5ms, [&fired] { fired.emplace_back("cancelled"); })->cancel();
    std::unique_ptr<platform::Timer> own;
    own = loop.repeat(loop.now() + 10ms, 1ms, [&] {
        own.reset();
        fired.emplace_back("own");
    });
    loop.performAfter(30ms, [&fired] { fired.emplace_back("loop's"); });
    ASSERT_TRUE(QTest::qWaitFor([&fired] { return fired.size() == 5; }));
    EXPECT_EQ(fired, (Texts { "thread's", "queued", "overdue", "own", "loop's" }));
    EXPECT_EQ(hourly->fireDate(), first + 2h);
}

/// How long the computer has slept, as the clock that counts sleep has it.
std::atomic<int> sleptSeconds = 0;

TEST(DesktopRunLoop, TellsOfAWakeBeforeWhatFellDueInSleep)
{
    DesktopRunLoop loop;
    ToolkitLoop const around(loop);
    Texts told;
    auto const wake = loop.observeWake([&told] { told.emplace_back("wake"); });
    std::unique_ptr<platform::Timer> timer;
    for (auto const& schedule : { std::function<void()>([&] {
                                     timer = loop.repeat(loop.now() + 1ms, 1h, [&told] { told.emplace_back("timer"); });
                                 }),
             std::function<void()>([&] { timer = loop.after(1ms, [&told] { told.emplace_back("timer"); }); }) }) {
        schedule();
        sleptSeconds += 3600;
        ASSERT_TRUE(QTest::qWaitFor([&told] { return !told.empty() && told.back() == "timer"; }));
        EXPECT_EQ(std::exchange(told, {}), (Texts { "wake", "timer" }));
    }
}

TEST(SleepWatch, NoticesEachSleepOnceAndNoUnevenReading)
{
    SleepWatch watch(100s, 90s);
    EXPECT_FALSE(watch.noticesSleep(200s, 189.95s));
    EXPECT_TRUE(watch.noticesSleep(300s, 280s));
    EXPECT_FALSE(watch.noticesSleep(400s, 380s));
}

/// Takes the addresses that the program opens.
struct Browser : QObject {
    Q_OBJECT

public:
    Browser() { QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "open"); }
    ~Browser() override { QDesktopServices::unsetUrlHandler(QStringLiteral("https")); }

    Q_SLOT void open(QUrl const& url) { opened = url.toEncoded().toStdString(); }

    std::string opened;
};

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

TEST_F(MainWindowsTest, TheUsersHandReachesTheModelsAndTheSettings)
{
    int actions = 0;
    outlets_.useConnectionButton.action = [&](platform::Sender) { ++actions; };
    outlets_.updateIntervalPopupButton.action = [&] { ++actions; };
    // What the program sets keeps its line breaks until the user edits it.
    outlets_.usageLimit.text.set("1\n5\n");
    auto& field = widgetOf<QLineEdit>("usageLimit");
    EXPECT_EQ(field.text(), "1\n5\n");
    field.setCursorPosition(2);
    QTest::keyClicks(&field, QStringLiteral("00"));
    QGuiApplication::clipboard()->setText(QStringLiteral("\t.\r\n"));
    field.paste();
    EXPECT_EQ(field.text(), "100.5") << "a field holds one line";
    EXPECT_EQ(field.cursorPosition(), 4);
    QTest::mouseClick(&widgetOf<QPushButton>("useConnectionButton"), Qt::LeftButton);
    QTest::keyClick(&widgetOf<QCheckBox>("usageCapToggle"), Qt::Key_Space);
    auto& popUp = widgetOf<QComboBox>("updateIntervalPopupButton");
    // A closed list opens first, so that what is only passed over is not picked.
    QTest::keyClick(&popUp, Qt::Key_Down);
    EXPECT_EQ(actions, 1);
    for (auto const key : { Qt::Key_Down, Qt::Key_Return })
        QTest::keyClick(popUp.view(), key);
    QCoreApplication::sendPostedEvents(&popUp, QEvent::MetaCall);
    QWheelEvent wheel({}, {}, {}, { 0, -120 }, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&popUp, &wheel);
    EXPECT_EQ(outlets_.usageLimit.text.get(), "100.5");
    EXPECT_EQ(*defaults_.get<bool>(settings::showUsageCap), false);
    EXPECT_EQ(*defaults_.get<std::int64_t>(settings::hourUpdateInterval), 1);
    EXPECT_EQ(actions, 2);

    for (auto* const model : { &outlets_.window, &outlets_.monitorWindow }) {
        auto& widget = model == &outlets_.window ? window() : usageWindow();
        for (auto const& [key, modifier] :
            { std::pair(Qt::Key_Escape, Qt::NoModifier), { Qt::Key_W, Qt::ControlModifier } }) {
            model->makeKeyAndOrderFront();
            ASSERT_TRUE(QTest::qWaitForWindowActive(&widget));
            QTest::keyClick(&widget, key, modifier);
            EXPECT_FALSE(model->visible.get() || widget.isVisible());
        }
    }
}

TEST_F(MainWindowsTest, AWindowComesToTheFrontFromWhereverItIsWithATokenThatIsUsedOnce)
{
    auto const token = [] { return qEnvironmentVariable("XDG_ACTIVATION_TOKEN"); };
    for (auto const& [given, kept] : { std::pair(std::string(1024, 'x'), true), { std::string(1025, 'x'), false } }) {
        window().showMinimized();
        keepActivationToken(given);
        EXPECT_EQ(token(), kept ? QString::fromStdString(given) : QString());
        outlets_.window.makeKeyAndOrderFront();
        EXPECT_FALSE(window().isMinimized());
        EXPECT_EQ(token(), QString());
    }
    Browser browser;
    keepActivationToken("x");
    openInBrowser("https://tarvo.example/?a=%20b");
    EXPECT_EQ(browser.opened, "https://tarvo.example/?a=%20b");
    EXPECT_EQ(token(), QString());
}

TEST_F(MainWindowsTest, WhatTheProgramSetsIsShownAndNotTakenForTheUsers)
{
    outlets_.showNotificationsToggle.on.set(true);
    outlets_.statusBarDropdown.indexOfSelectedItem.set(3);
    outlets_.usageCapText.text.set("<b>1</b> & more");
    auto const width = window().sizeHint().width();
    std::string const endless(10'000, 'W');
    outlets_.tarvoUsageKeysComboBox.addItems({ endless });
    outlets_.tarvoUsageKeysComboBox.selectItemAtIndex(0);
    outlets_.usageLimit.text.set(endless);
    outlets_.usageBar.maxValue.set(50'000);
    outlets_.usageBar.doubleValue.set(55'123);
    QCoreApplication::processEvents();
    EXPECT_EQ(window().sizeHint().width(), width) << "overlong texts do not break the layout";
    EXPECT_TRUE(widgetOf<QCheckBox>("showNotificationsToggle").isChecked());
    EXPECT_EQ(widgetOf<QComboBox>("statusBarDropdown").currentText(), "Remaining");
    EXPECT_EQ(widgetOf<QLabel>("usageCapText").text(), "<b>1</b> & more");
    EXPECT_EQ(widgetOf<QLabel>("usageCapText").textFormat(), Qt::PlainText);
    EXPECT_EQ(widgetOf<LevelBar>("usageBar").percentage(), 110);
    EXPECT_FALSE(defaults_.contains(settings::showNotificationsMenu));

    // The level is shown by a fade.
    auto const* const fade = qobject_cast<QGraphicsOpacityEffect*>(widgetOf<LevelBar>("usageBar").graphicsEffect());
    outlets_.usageBar.opacity.set(0);
    EXPECT_EQ(fade->opacity(), 0);
    platform::animate(loop_, { &outlets_.usageBar.opacity }, 1, 20ms, [] { });
    EXPECT_TRUE(QTest::qWaitFor([fade] { return fade->opacity() == 1; }));

    // A text that is no item stands in place of one.
    auto& model = outlets_.tarvoUsageKeysComboBox;
    auto& box = widgetOf<QComboBox>("tarvoUsageKeysComboBox");
    model.removeAllItems();
    model.text.set("Boat - K3");
    model.addItems({ "Home - K1", "Cottage - K2" });
    EXPECT_EQ(box.currentIndex(), -1);
    EXPECT_EQ(box.placeholderText(), "Boat - K3");
    box.showPopup();
    for (auto const key : { Qt::Key_Home, Qt::Key_Return })
        QTest::keyClick(box.view(), key);
    EXPECT_EQ(*defaults_.get<std::string>(settings::tarvoKeySelected), "Home - K1");
    model.removeAllItems();
    EXPECT_EQ(box.placeholderText(), "Home - K1");
}

TEST_F(MainWindowsTest, AWindowComesBackAsTheUserLeftItAlsoAfterARestart)
{
    QRect const left(120, 90, 640, 500);
    usageWindow().setGeometry(left);
    outlets_.monitorWindow.userClosed();
    outlets_.monitorWindow.makeKeyAndOrderFront();
    EXPECT_EQ(usageWindow().geometry(), left);
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
    for (int openings = 0; openings < 2; ++openings) {
        windows_ = std::make_unique<MainWindows>(outlets_, bundle_, loop_, "");
        EXPECT_NE(window().findChild<QScrollArea*>(), nullptr);
        EXPECT_LT(window().height(), window().screen()->availableGeometry().height());
        outlets_.window.userClosed();
        outlets_.window.visible.set(true);
    }
    QApplication::setFont(usual);
}

TEST_F(MainWindowsTest, AnAbsurdFigureIsCutOffAndWholeInTheToolTip)
{
    auto& label = widgetOf<QLabel>("downloadUsage");
    outlets_.downloadUsage.toolTip.set("52,345.68MB");
    EXPECT_EQ(label.toolTip(), "52,345.68MB");
    std::string const absurd(400, '9');
    for (auto* const field : { &outlets_.downloadUsage, &outlets_.uploadUsage, &outlets_.totalUsage,
             &outlets_.usageCapText, &outlets_.usageCapPercentageText })
        field->text.set(absurd);
    EXPECT_LT(usageWindow().sizeHint().width(), 1000);
    EXPECT_TRUE(label.text().startsWith("99") && label.text().endsWith("…"));
    auto const lines = label.toolTip().split('\n');
    EXPECT_EQ(lines.mid(0, 7).join(QString()).toStdString(), absurd);
    EXPECT_EQ(lines.back(), "52,345.68MB");
    EXPECT_EQ(widgetOf<QLabel>("usageCapPercentageText").toolTip().remove('\n').toStdString(), absurd);
}

TEST_F(MainWindowsTest, ASheetShowsPlainTextAndAnswersByKey)
{
    Texts const one { "Fish & Chips" };
    Texts const two { "Fish & Chips", "Cancel" };
    std::vector<std::tuple<Texts, Qt::Key, int>> const cases {
        { two, Qt::Key_Escape, Alert::firstButtonReturn + 1 },
        { two, Qt::Key_Return, Alert::firstButtonReturn },
        { one, Qt::Key_Escape, Alert::dismissedReturn },
        // By its title bar, or as the program ends.
        { two, Qt::Key_Close, Alert::dismissedReturn },
    };
    for (auto const& [buttons, key, expected] : cases) {
        int answered = -1;
        outlets_.window.beginSheet(
            { "<b>bold</b> & one", std::string(10'000, 'W'), buttons }, [&answered](int answer) { answered = answer; });
        auto* const sheet = window().findChild<QMessageBox*>();
        ASSERT_NE(sheet, nullptr);
        EXPECT_EQ(sheet->defaultButton()->text(), "&Fish && Chips");
        EXPECT_TRUE(sheet->width() < 1000 && sheet->height() < 600) << "overlong texts stay on the screen";
        for (char const* const label : { "qt_msgbox_label", "qt_msgbox_informativelabel" })
            EXPECT_EQ(sheet->findChild<QLabel*>(QLatin1String(label))->textFormat(), Qt::PlainText) << label;
        if (key == Qt::Key_Close)
            sheet->close();
        else
            QTest::keyClick(sheet, key);
        EXPECT_EQ(answered, expected);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST_F(MainWindowsTest, TheUsageWindowTakesTheMenuInAndGoesWithItIfItCameUninvited)
{
    auto const& shown = outlets_.monitorWindow.visible;
    auto const isMenuShown = [] { return widgetOf<LevelBar>("usageBar").window()->layout()->menuBar()->isVisible(); };
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

TEST_F(MainWindowsTest, TheAddKeySheetNeedsOnlyTheKeyboardAndEveryWindowIsFitForIt)
{
    Texts done;
    outlets_.confirmKeyButton.action = [&](platform::Sender) { done.push_back(outlets_.usageID.text.get()); };
    outlets_.addKeyWindow.closeAction = [&] { outlets_.window.endSheet(outlets_.addKeyWindow); };
    outlets_.window.beginSheet(outlets_.addKeyWindow);
    auto& field = widgetOf<QLineEdit>("usageID");
    auto& sheet = *field.window();
    EXPECT_EQ(sheet.windowModality(), Qt::WindowModal);
    EXPECT_EQ(sheet.parentWidget(), &window());
    ASSERT_TRUE(QTest::qWaitForWindowActive(&sheet));
    EXPECT_EQ(sheet.focusWidget(), &field);
    QTest::keyClicks(&field, QStringLiteral("K1"));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(done, (Texts { "K1" }));
    QTest::keyClick(&sheet, Qt::Key_Escape);
    EXPECT_FALSE(sheet.isVisible());

    // Every control has a name, and the focus follows the eye.
    outlets_.window.beginSheet(outlets_.addKeyWindow);
    for (auto* const top :
        { &window(), widgetOf<LevelBar>("usageBar").window(), widgetOf<QLineEdit>("usageID").window() }) {
        QPoint previous(0, 0);
        for (auto* next = top->nextInFocusChain(); next != top; next = next->nextInFocusChain()) {
            if (!next->isVisible() || next->focusPolicy() == Qt::NoFocus || next->window() != top)
                continue;
            auto* const accessible = QAccessible::queryAccessibleInterface(next);
            EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty()) << next->objectName().toStdString();
            auto const place = next->mapTo(top, next->rect().center());
            bool const sameRow = std::abs(place.y() - previous.y()) < 10;
            EXPECT_TRUE(place.y() > previous.y() || (sameRow && place.x() > previous.x()))
                << next->objectName().toStdString();
            previous = place;
        }
    }
}

using Settings = QMap<QString, QVariantMap>;

/// A settings portal that prefers dark and, as GNOME says it, high contrast, with a connection of its own.
class SettingsPortal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    SettingsPortal()
    {
        qDBusRegisterMetaType<Settings>();
        bus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), this, QDBusConnection::ExportAllContents);
        EXPECT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
    }

    Q_SLOT Settings ReadAll(QStringList const& spaces)
    {
        return { { spaces.at(0), { { "color-scheme", 1U } } }, { spaces.at(1), { { "high-contrast", true } } } };
    }
    // NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the generated code has names of its own
    Q_SIGNAL void SettingChanged(QString const& space, QString const& key, QDBusVariant const& value);

    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("portal"));
};

QVariant colorSetting(double red, double green, double blue)
{
    QDBusArgument parts;
    parts.beginStructure();
    parts << red << green << blue;
    parts.endStructure();
    return QVariant::fromValue(parts);
}

TEST(ColorScheme, TellsThePreferencesOfAPortalAndEveryLaterOne)
{
    using enum platform::Appearance;
    std::vector<Look> told;
    DesktopRunLoop loop;
    ToolkitLoop const around(loop);
    Bus bus(loop);
    ColorScheme const scheme(bus, [&told](Look const& look) { told.push_back(look); });
    SettingsPortal portal;
    ASSERT_TRUE(QTest::qWaitFor([&told] { return told.size() == 1; }));
    auto const freedesktop = QStringLiteral("org.freedesktop.appearance");
    auto const gnome = QStringLiteral("org.gnome.desktop.a11y.interface");
    Q_EMIT portal.SettingChanged(freedesktop, "accent-color", QDBusVariant(2U));
    Q_EMIT portal.SettingChanged(gnome, "high-contrast", QDBusVariant(false));
    Q_EMIT portal.SettingChanged(freedesktop, "color-scheme", QDBusVariant(2U));
    Q_EMIT portal.SettingChanged(freedesktop, "contrast", QDBusVariant(0U));
    Q_EMIT portal.SettingChanged(gnome, "high-contrast", QDBusVariant(true));
    Q_EMIT portal.SettingChanged(freedesktop, "contrast", QDBusVariant(1U));
    for (double const green : { 0.4, -1.0 })
        Q_EMIT portal.SettingChanged(freedesktop, "accent-color", QDBusVariant(colorSetting(1, green, 0)));
    ASSERT_TRUE(QTest::qWaitFor([&told] { return told.size() == 6; }));
    platform::Color const orange { 255, 102, 0 };
    std::vector<Look> const expected { { HighContrastDark, {} }, { Dark, {} }, { Light, {} }, { HighContrastLight, {} },
        { HighContrastLight, orange }, { HighContrastLight, {} } };
    EXPECT_TRUE(told == expected) << "the portal's own word on contrast goes before GNOME's";
}

/// Only writes down what it is asked for.
class NotificationService : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    NotificationService()
    {
        bus.registerObject(QStringLiteral("/org/freedesktop/Notifications"), this, QDBusConnection::ExportAllContents);
        EXPECT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.Notifications")));
    }

    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("service"));
    std::vector<Texts> notified;

    Q_SLOT uint Notify(QString const& /*application*/, uint replaced, QString const& icon, QString const& summary,
        QString const& body, QStringList const& actions, QVariantMap const& /*hints*/, int /*timeout*/)
    {
        notified.push_back({ std::to_string(replaced), icon.toStdString(), summary.toStdString(), body.toStdString(),
            actions.join(QLatin1Char(' ')).toStdString() });
        return replaced != 0 ? replaced : 40 + static_cast<uint>(notified.size());
    }

    Q_SIGNAL void ActionInvoked(uint, QString const&);
};

struct ActivationLog final : platform::NotificationCenterDelegate {
    void didActivateNotification(platform::NotificationId id) override { activated.push_back(id); }
    std::vector<platform::NotificationId> activated;
};

TEST(FreedesktopNotifications, DeliversAndTellsOfClicksOnItsOwnOnly)
{
    NotificationService service;
    DesktopRunLoop loop;
    ToolkitLoop const around(loop);
    Bus bus(loop);
    auto const center = FreedesktopNotifications::connectTo(bus, { "Meter", "meter.desktop", "meter", "Show" });
    ActivationLog log;
    center->setDelegate(&log);
    // Each one takes the place of the last, unless that has gone.
    std::vector<platform::NotificationId> const ids { 41, 41, 43 };
    for (auto const id : ids) {
        auto const count = service.notified.size();
        if (count == 2)
            center->removeDelivered(41);
        center->deliver({ "Fish & Chips", "1 <b>bold</b> & one" });
        ASSERT_TRUE(QTest::qWaitFor([&] { return service.notified.size() > count; }));
        EXPECT_EQ(service.notified.back(),
            (Texts { count == 1 ? "41" : "0", "meter", "Fish & Chips", "1 &lt;b&gt;bold&lt;/b&gt; &amp; one",
                "default Show" }));
        Q_EMIT service.ActionInvoked(7, QStringLiteral("default"));
        Q_EMIT service.ActionInvoked(id, QStringLiteral("another"));
        Q_EMIT service.ActionInvoked(id, QStringLiteral("default"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return log.activated.size() > count; }));
    }
    EXPECT_EQ(log.activated, ids);
}

}

/// Takes the place of the C library's function, so that a test can have the computer sleep.
extern "C" int readClock(clockid_t clock, timespec* time) __asm__("clock_gettime");

int readClock(clockid_t clock, timespec* time)
{
    auto const result = static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
    if (clock == CLOCK_BOOTTIME)
        time->tv_sec += sleptSeconds;
    return result;
}

#include "DesktopTest.moc"
