// SPDX-License-Identifier: MIT
// The status item as a panel finds it on a real session bus.
#include "desktop/StatusArea.h"
#include "platform/ThreadQueues.h"
#include "tests/support/FakeService.h"
#include "tests/support/PanelTest.h"
#include "windows/ToolkitLoop.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

#include <set>
#include <sys/prctl.h>

using namespace std::chrono_literals;
using platform::Menu;
using platform::MenuItem;

namespace {

std::shared_ptr<MenuItem> makeLine(std::string const& title)
{
    auto line = std::make_shared<MenuItem>();
    line->title.set(title);
    return line;
}

class StatusItem : public PanelTest {
protected:
    StatusItem()
    {
        menu_.setItems({ figure_, update_ });
        item_.title.set("57.3GB");
    }

    ~StatusItem() override
    {
        area_.reset();
        drawer_.cancel();
        queues_.waitUntilIdle(bound);
    }

    void startArea(platform::Seconds loginTime = 1ms)
    {
        StatusArea::Handlers const handlers { .noStatusArea = [this] { ++timesWithoutPlace_; },
            .placed = [this] { ++timesPlaced_; } };
        area_.emplace(item_, StatusNotifierItem::Look { "Meter", "meter", "/share/icons" },
            DBusMenu::TextDirection::LeftToRight, drawer_, bus_, handlers, loginTime);
    }

    void start()
    {
        startWatcher();
        startArea();
        ASSERT_TRUE(waitFor([this] { return reader_.hasItem(); }));
    }

    bool waitForLines(Texts const& expected)
    {
        return waitFor([&] { return lines() == expected; });
    }

    // The program shares this process, so the main loop has to run for its answer.
    QDBusMessage ask(char const* path, char const* interface, char const* method, QVariantList const& arguments)
    {
        auto message = QDBusMessage::createMethodCall(
            QString::fromUtf8(bus_.uniqueName()), QLatin1String(path), QLatin1String(interface), QLatin1String(method));
        message.setArguments(arguments);
        QDBusPendingCallWatcher const call(panel_.asyncCall(message));
        EXPECT_TRUE(waitFor([&call] { return call.isFinished(); })) << method;
        return call.reply();
    }

    QDBusMessage askMenu(char const* method, QVariantList const& arguments)
    {
        return ask("/StatusMenu", "com.canonical.dbusmenu", method, arguments);
    }

    /// As a panel reads it.
    QVariant property(char const* name)
    {
        auto const answer = ask("/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
            { "org.kde.StatusNotifierItem", QLatin1String(name) });
        return answer.arguments().value(0).value<QDBusVariant>().variant();
    }

    static constexpr std::chrono::seconds longerThanGrace { 2 };
    int timesWithoutPlace_ = 0;
    int timesPlaced_ = 0;
    std::shared_ptr<MenuItem> figure_ = makeLine("Downloaded: 52.35GB");
    std::shared_ptr<MenuItem> update_ = makeLine("Update now");
    Menu submenu_;
    Menu menu_;
    platform::StatusItem item_ { menu_ };
    DesktopRunLoop loop_;
    ToolkitLoop around_ { loop_ };
    Bus bus_ { loop_ };
    platform::ThreadQueues queues_;
    IconDrawer drawer_ { USAGE_METER_DRAW, loop_, queues_ };
    std::optional<StatusArea> area_;
};

using Names = std::multiset<std::string>;

TEST_F(StatusItem, ShowsWhatAPanelHasRoomFor)
{
    update_->submenu = &submenu_;
    submenu_.setItems({ makeLine("Home"), makeLine("Cottage_by_the__sea") });
    submenu_.items()[0]->on.set(true);
    menu_.setItems({ figure_, makeLine("Cap: 100GB"), makeLine(""), makeLine(std::string(81, 'x')), update_ });
    menu_.items()[1]->hidden.set(true);
    menu_.items()[2]->isSeparator = true;
    item_.title.set(std::string(248, '9'));
    start();
    EXPECT_EQ(reader_.title(), QString(31, '9') + "…");
    EXPECT_TRUE(waitForLines({ "Downloaded: 52.35GB", "--", std::string(79, 'x') + "…", "Update now", "  * Home",
        "  Cottage_by_the__sea" }));
    QString name;
    QString details;
    auto const toolTip = property("ToolTip").value<QDBusArgument>();
    toolTip.beginStructure();
    toolTip >> name;
    toolTip.beginArray();
    toolTip.endArray();
    toolTip >> name >> details;
    toolTip.endStructure();
    EXPECT_EQ(name, QString(248, '9'));
    EXPECT_EQ(details, "Downloaded: 52.35GB") << "of what shows before the first separator";
}

TEST_F(StatusItem, TellsWhatIsNewOnceATurn)
{
    figure_->on.set(true);
    start();
    ASSERT_TRUE(waitFor([this] { return property("IconName") == ""; })) << "the title is drawn";
    Names names;
    Bus panel(loop_);
    auto const heard = panel.listen(bus_.uniqueName(), nullptr, nullptr, nullptr,
        [&names](sd_bus_message* signal) { names.insert(sd_bus_message_get_member(signal)); });
    // Answered after the bus has the rule.
    ASSERT_TRUE(panel.callAndWait(panel.callBus("NameHasOwner", "org.freedesktop.DBus"), bound));
    item_.title.set("Please wait");
    item_.title.set("58GB");
    figure_->on.set(false);
    update_->on.set(true);
    ASSERT_TRUE(waitForLines({ "Downloaded: 52.35GB", "* Update now" }));
    ASSERT_TRUE(waitFor([this] { return reader_.title() == "58GB"; }));
    EXPECT_TRUE(waitFor([&names] { return names.size() >= 5; }));
    EXPECT_EQ(names, (Names { "NewTitle", "XAyatanaNewLabel", "NewIcon", "NewToolTip", "ItemsPropertiesUpdated" }));

    names.clear();
    item_.title.set("Please wait");
    item_.title.set("58GB");
    figure_->title.set("Downloaded: ...");
    figure_->title.set("Downloaded: 52.35GB");
    menu_.setItems({ figure_ });
    ASSERT_TRUE(waitForLines({ "Downloaded: 52.35GB" }));
    EXPECT_TRUE(waitFor([&names] { return names.size() >= 2; }));
    EXPECT_EQ(names, (Names { "LayoutUpdated", "NewToolTip" }));

    menu_.needsUpdate = [this] { figure_->title.set("Downloaded: 54GB"); };
    EXPECT_EQ(askMenu("AboutToShow", { 0 }).arguments(), QVariantList { false });
    EXPECT_TRUE(waitForLines({ "Downloaded: 54GB" }));
}

TEST_F(StatusItem, AClickCountsOnceThoughItTakesItsLineAway)
{
    start();
    int clicks = 0;
    update_->action = [&](platform::Sender const&) {
        menu_.setItems({});
        ++clicks;
    };
    update_.reset();
    auto const click = [this, id = reader_.lines()[1].id] {
        return askMenu("Event", { id, "clicked", QVariant::fromValue(QDBusVariant(0)), 0U }).type();
    };
    EXPECT_EQ(click(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(waitForLines({}));
    EXPECT_EQ(click(), QDBusMessage::ErrorMessage) << "the line has gone";
    EXPECT_EQ(clicks, 1);
}

/// A panel that is asked to show the item. One that hangs does not answer.
struct FakePanel : FakeService {
    explicit FakePanel(bool isHanging = false)
        : FakeService(
              "org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
              isHanging ? Answer() : [](QDBusMessage const&) { return QVariantList(); })
    {
    }

    std::ptrdiff_t registrations() const
    {
        return std::ranges::count(calls, QStringLiteral("RegisterStatusNotifierItem"), &QDBusMessage::member);
    }
};

TEST_F(StatusItem, MakesUpForWhatALabelPanelGetsWrong)
{
    ::prctl(PR_SET_NAME, "gnome-shell");
    std::optional<FakePanel> panel(std::in_place);
    figure_->title.set("_Cottage_by_the__sea");
    item_.title.set("Please wait…");
    startArea();
    item_.title.set("57.3GB");
    EXPECT_TRUE(waitFor([&panel] { return panel->registrations() == 2; }));
    EXPECT_EQ(timesPlaced_, 1);
    for (auto const& [name, shown] : { std::pair("XAyatanaLabel", "57.3GB"), { "XAyatanaLabelGuide", "Please wait…" },
             { "IconName", "meter-symbolic" }, { "IconThemePath", "/share/icons" },
             { "IconAccessibleDesc", "Meter: 57.3GB" } })
        EXPECT_EQ(property(name), QString::fromUtf8(shown)) << name;
    EXPECT_EQ(askMenu("GetLayout", { 0, -1, QStringList() }).type(), QDBusMessage::ReplyMessage);
    auto const label = askMenu("GetProperty", { 1, QStringLiteral("label") }).arguments().value(0);
    EXPECT_EQ(label.value<QDBusVariant>().variant(), "__Cottage_by_the__sea") << "only its first mark is read";
    panel.reset();
    ::prctl(PR_SET_NAME, "another-panel");
    startWatcher();
    EXPECT_TRUE(waitFor([this] { return timesPlaced_ == 2 && property("IconName") == ""; }));
}

TEST_F(StatusItem, WaitsForAPanelThatHangsUntilAnotherHasTakenItsPlace)
{
    startArea();
    std::optional<FakePanel> silent(std::in_place, true);
    ASSERT_TRUE(waitFor([&silent] { return silent->registrations() > 0; }));
    EXPECT_FALSE(reader_.waitFor([this] { return timesWithoutPlace_ > 0; }, longerThanGrace));
    ASSERT_TRUE(silent->bus.unregisterService(QStringLiteral("org.kde.StatusNotifierWatcher")));
    startWatcher();
    ASSERT_TRUE(waitFor([this] { return timesPlaced_ == 1; }));
    // With its last connection goes what it was asked, and the bus says so.
    silent.reset();
    EXPECT_FALSE(reader_.waitFor([this] { return timesWithoutPlace_ > 0; }, longerThanGrace));
}

TEST_F(StatusItem, SaysThatThereIsNoPlaceOnceTheUserHasLoggedIn)
{
    startArea(StatusArea::usualLoginTime);
    EXPECT_FALSE(reader_.waitFor([this] { return timesWithoutPlace_ > 0; }, longerThanGrace));
    startArea();
    ASSERT_TRUE(waitFor([this] { return timesWithoutPlace_ == 1; }));
    startWatcher();
    EXPECT_TRUE(waitFor([this] { return reader_.hasItem(); }));

    watcher_.reset();
    EXPECT_FALSE(reader_.waitFor([this] { return timesWithoutPlace_ > 1; }, longerThanGrace));
    startWatcher();
    EXPECT_TRUE(watcher_->items().isEmpty());
    EXPECT_TRUE(waitFor([this] { return !watcher_->items().isEmpty(); }));
}

}
