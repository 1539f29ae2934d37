// SPDX-License-Identifier: MIT
// The status item and its menu on a connection of their own, with both ends in this process: a panel calls them,
// rightly and wrongly, while the model changes.
#include "desktop/DBusMenu.h"
#include "desktop/PendingCall.h"
#include "desktop/StatusNotifierItem.h"
#include "windows/Text.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusServer>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <span>

using platform::Menu;
using platform::MenuItem;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// The fuzzer's bytes, and zeros after them.
class Bytes {
public:
    Bytes(std::uint8_t const* data, std::size_t size)
        : rest_(data, size)
    {
    }

    bool isEmpty() const { return rest_.empty(); }

    std::size_t below(std::size_t limit)
    {
        if (rest_.empty())
            return 0;
        auto const byte = rest_.front();
        rest_ = rest_.subspan(1);
        return byte % limit;
    }

    int number() { return static_cast<int>(below(256)) - 4; }

    /// Without NUL, which no text of the program's can hold.
    std::string text()
    {
        std::string text(below(16), '\0');
        for (char& character : text)
            character = static_cast<char>(below(255) + 1);
        return text;
    }

private:
    std::span<std::uint8_t const> rest_;
};

bool shows(Menu const& menu, MenuItem const* wanted)
{
    return std::ranges::any_of(menu.items(), [wanted](auto const& item) {
        return (item.get() == wanted && !item->hidden.get()) || (item->submenu && shows(*item->submenu, wanted));
    });
}

/// Three menus, each of which can be a submenu of those before it.
struct Model {
    Model()
    {
        menus[1].setItems({ makeLine(1, "b", 0), makeLine(1, "c", 1) });
        menus[0].setItems({ makeLine(0, "a", 0), makeLine(0, "d_", 1), makeLine(0, "e", 2), makeLine(0, "f", 3) });
        menus[0].items()[2]->submenu = &menus[1];
    }

    std::shared_ptr<MenuItem> makeLine(std::size_t level, std::string title, std::size_t kind)
    {
        auto line = std::make_shared<MenuItem>();
        line->title.set(std::move(title));
        line->isSeparator = kind == 3;
        line->action = [this, level, kind, self = line.get()](platform::Sender const&) {
            require(shows(menus[0], self));
            auto items = menus.at(level).items();
            if (kind == 1)
                std::erase_if(items, [self](auto const& each) { return each.get() == self; });
            else if (kind == 2)
                items.clear();
            else if (kind == 3)
                items.back()->hidden.set(true);
            menus.at(level).setItems(std::move(items));
        };
        return line;
    }

    void change(Bytes& bytes)
    {
        auto const level = bytes.below(menus.size());
        auto items = menus.at(level).items();
        auto const kind = bytes.below(8);
        if (kind == 0 && items.size() < 6)
            items.push_back(makeLine(level, bytes.text(), bytes.below(4)));
        if (items.empty())
            return;
        auto const place = items.begin() + static_cast<std::ptrdiff_t>(bytes.below(items.size()));
        auto& line = **place;
        if (kind == 1)
            line.title.set(bytes.text());
        else if (kind == 2)
            line.hidden.set(!line.hidden.get());
        else if (kind == 3)
            line.on.set(!line.on.get());
        else if (kind == 4)
            items.erase(place);
        else if (kind == 5)
            std::rotate(items.begin(), place, items.end());
        else if (kind == 6)
            line.submenu
                = line.submenu || level + 1 == menus.size() ? nullptr : &menus.at(level + 1 + bytes.below(2 - level));
        menus.at(level).setItems(kind == 7 ? Menu::Items() : std::move(items));
    }

    std::array<Menu, 3> menus;
    platform::StatusItem item { menus[0] };
};

constexpr char const* menuInterface = "com.canonical.dbusmenu";
constexpr char const* itemInterface = "org.kde.StatusNotifierItem";
constexpr char const* propertiesInterface = "org.freedesktop.DBus.Properties";

struct Member {
    char const* interface;
    char const* name;
    /// One letter an argument, as argument() reads them.
    std::string_view types;
};

QString word(Bytes& bytes)
{
    static constexpr std::array words { "clicked", "hovered", "x-", "label", "visible", "type", "Title", "ToolTip",
        "IconPixmap", menuInterface, itemInterface };
    auto const choice = bytes.below(words.size() + 1);
    return choice < words.size() ? QString::fromLatin1(words[choice]) : toQt(bytes.text());
}

QVariant oddArgument(Bytes& bytes)
{
    QVariant nested = 0;
    for (auto depth = bytes.below(50); depth > 0; --depth)
        nested = QVariant::fromValue(QDBusVariant(nested));
    DBusMenuLayout layout;
    for (auto depth = bytes.below(8); depth > 0; --depth)
        layout.children = { layout, layout };
    QVariantList const odd { nested, QVariant::fromValue(layout), true, 1e300, 7LL, QByteArray(300, 'x'), nested,
        QVariant::fromValue(QDBusObjectPath(QStringLiteral("/"))), QVariantMap { { word(bytes), nested } },
        QVariant::fromValue(QDBusSignature(QStringLiteral("a{sv}"))), QStringList(), QVariantList { 1, nested } };
    return odd.at(static_cast<qsizetype>(bytes.below(static_cast<std::size_t>(odd.size()))));
}

QVariant argument(char type, Bytes& bytes)
{
    auto const count = type == 'i' || type == 's' ? 0 : bytes.below(8);
    QList<int> ids;
    QStringList words;
    QList<DBusMenuEvent> events;
    for (std::size_t i = 0; i < count; ++i) {
        ids.push_back(bytes.number());
        words.push_back(word(bytes));
        events.push_back({ ids.back(), words.back(), QDBusVariant(0), 0 });
    }
    switch (type) {
    case 'i':
        return bytes.number();
    case 's':
        return word(bytes);
    case 'u':
        return 0U;
    case 'S':
        return words;
    case 'I':
        return QVariant::fromValue(count == 7 ? ids + QList<int>(5'000, 1) : ids);
    case 'E':
        return QVariant::fromValue(events);
    default:
        return QVariant::fromValue(QDBusVariant(oddArgument(bytes)));
    }
}

bool isSame(DBusMenuLayout const& one, DBusMenuLayout const& other)
{
    return one.id == other.id && one.properties == other.properties
        && std::ranges::equal(one.children, other.children, isSame);
}

DBusMenuLayout* find(DBusMenuLayout& line, int id)
{
    if (line.id == id)
        return &line;
    for (auto& child : line.children) {
        if (auto* const found = find(child, id))
            return found;
    }
    return nullptr;
}

// Whether a panel has what it needs to show a menu, told from the model alone, and no id that it has met.
bool isMenu(DBusMenuLayout const& layout, Menu const& menu, QSet<int>& met)
{
    bool const areChoices = std::ranges::any_of(menu.items(), [](auto const& item) { return item->on.get(); });
    return std::ranges::equal(layout.children, menu.items(), [&](auto const& line, auto const& item) {
        auto const has = [&line](char const* name, QVariant const& value) {
            return line.properties.value(QLatin1String(name)) == value;
        };
        auto const title = asMenuLine(item->title.get()).replace(QLatin1Char('_'), QLatin1String("__"));
        auto const known = met.size();
        met.insert(line.id);
        return met.size() > known && has("type", item->isSeparator ? QStringLiteral("separator") : QVariant())
            && has("label", item->isSeparator || title.isEmpty() ? QVariant() : title)
            && has("visible", item->hidden.get() ? false : QVariant())
            && has("toggle-state", areChoices && !item->isSeparator ? int { item->on.get() } : QVariant())
            && (item->submenu ? isMenu(line, *item->submenu, met) : line.children.empty());
    });
}

/// Both ends, made once for all inputs.
struct Connections {
    Connections()
    {
        qInstallMessageHandler([](QtMsgType, QMessageLogContext const&, QString const&) { });
        QObject::connect(&server, &QDBusServer::newConnection, &server,
            [this](QDBusConnection const& connection) { program = connection; });
        panel = QDBusConnection::connectToPeer(server.address(), QStringLiteral("panel"));
        while (!program.isConnected())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    bool const isOffscreen = qputenv("QT_QPA_PLATFORM", "offscreen");
    int argumentCount = 1;
    std::array<char, 5> name { "fuzz" };
    std::array<char*, 2> arguments { name.data(), nullptr };
    QApplication application { argumentCount, arguments.data() };
    QDBusServer server;
    QDBusConnection program { QString() };
    QDBusConnection panel { QString() };
};

/// Calls the item and the menu, and keeps what the menu was said to hold.
class Panel : public QObject {
    Q_OBJECT

public:
    explicit Panel(QDBusConnection bus)
        : bus_(std::move(bus))
    {
        for (char const* const interface : { menuInterface, itemInterface })
            bus_.connect({}, {}, QLatin1String(interface), {}, this, SLOT(hear(QDBusMessage)));
    }

    void call(Bytes& bytes)
    {
        static constexpr std::array<Member, 15> members { { { menuInterface, "GetLayout", "iiS" },
            { menuInterface, "GetGroupProperties", "IS" }, { menuInterface, "GetProperty", "is" },
            { menuInterface, "Event", "isvu" }, { menuInterface, "EventGroup", "E" },
            { menuInterface, "AboutToShow", "i" }, { menuInterface, "AboutToShowGroup", "I" },
            { itemInterface, "Activate", "ii" }, { itemInterface, "Scroll", "is" },
            { itemInterface, "ProvideXdgActivationToken", "s" }, { propertiesInterface, "Get", "ss" },
            { propertiesInterface, "GetAll", "s" }, { propertiesInterface, "Set", "ssv" },
            { itemInterface, "SecondaryActivate", "ii" }, { itemInterface, "ContextMenu", "ii" } } };
        auto member = members.at(bytes.below(members.size()));
        auto const fault = bytes.below(8);
        QVariantList arguments;
        for (char const type : member.types)
            arguments.push_back(fault == 7 && bytes.below(2) == 1 ? oddArgument(bytes) : argument(type, bytes));
        if (fault == 6)
            arguments.push_back(oddArgument(bytes));
        else if (fault == 5)
            arguments.pop_back();
        bool const toMenu = member.interface == menuInterface || fault == 3;
        send(toMenu ? StatusNotifierItem::menuPath : StatusNotifierItem::path, member.interface,
            fault == 4 ? word(bytes) : QString::fromLatin1(member.name), arguments, [](QDBusPendingCall const&) { });
    }

    void read(int id, std::function<void(DBusMenuLayout const&)> handler)
    {
        send(StatusNotifierItem::menuPath, menuInterface, QStringLiteral("GetLayout"), { id, -1, QStringList() },
            [id, handler = std::move(handler)](QDBusPendingReply<uint, DBusMenuLayout> const& reply) {
                require(!reply.isError() || id != 0);
                if (!reply.isError())
                    handler(reply.argumentAt<1>());
            });
    }

    void refresh(int id)
    {
        read(id, [this, id](DBusMenuLayout const& layout) {
            if (auto* const line = find(copy, id))
                *line = layout;
        });
    }

    /// Runs the main loop until every call is answered.
    void wait() const
    {
        while (pending_ > 0)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    Q_SLOT void hear(QDBusMessage const& message)
    {
        auto const arguments = message.arguments();
        if (message.member() == QLatin1String("LayoutUpdated"))
            refresh(arguments.at(1).toInt());
        else if (message.member() == QLatin1String("XAyatanaNewLabel"))
            label = arguments.at(0).toString();
        else if (message.member() == QLatin1String("ItemsPropertiesUpdated"))
            update(qdbus_cast<QList<DBusMenuProperties>>(arguments.at(0)),
                qdbus_cast<QList<DBusMenuRemovedProperties>>(arguments.at(1)));
    }

    DBusMenuLayout copy;
    QString label;

private:
    void send(char const* path, char const* interface, QString const& member, QVariantList const& arguments,
        std::function<void(QDBusPendingCall const&)> handler)
    {
        auto message = QDBusMessage::createMethodCall({}, QLatin1String(path), QLatin1String(interface), member);
        message.setArguments(arguments);
        ++pending_;
        whenFinished(bus_.asyncCall(message), this, [this, handler = std::move(handler)](QDBusPendingCall const& call) {
            --pending_;
            handler(call);
        });
    }

    void update(QList<DBusMenuProperties> const& updated, QList<DBusMenuRemovedProperties> const& removed)
    {
        for (auto const& [id, properties] : updated) {
            if (auto* const line = find(copy, id))
                line->properties.insert(properties);
        }
        for (auto const& [id, names] : removed) {
            if (auto* const line = find(copy, id))
                line->properties.removeIf([&gone = names](auto const& each) { return gone.contains(each.key()); });
        }
    }

    QDBusConnection bus_;
    int pending_ = 0;
};

}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static Connections connections;
    Bytes bytes(data, size);
    Model model;
    DBusMenu menu(model.menus[0]);
    StatusNotifierItem item(model.item, {});
    auto& program = connections.program;
    program.registerObject(
        QLatin1String(StatusNotifierItem::menuPath), &menu, QDBusConnection::ExportScriptableContents);
    program.registerObject(QLatin1String(StatusNotifierItem::path), &item, QDBusConnection::ExportScriptableContents);

    Panel panel(connections.panel);
    panel.refresh(0);
    while (!bytes.isEmpty()) {
        auto const turn = bytes.below(8);
        if (turn == 0)
            panel.wait();
        else if (turn == 1)
            QCoreApplication::sendPostedEvents();
        else if (turn == 2) {
            model.item.title.set(bytes.text());
            item.setHost({ .look = static_cast<StatusLook>(bytes.below(3)) });
        } else if (turn < 5)
            model.change(bytes);
        else
            panel.call(bytes);
    }
    // Every click is queued then, runs then, and what it changed is heard of before the next answer.
    panel.wait();
    QCoreApplication::sendPostedEvents();
    panel.read(0, [](DBusMenuLayout const&) { });
    panel.wait();
    require(panel.label == asPanelLabel(model.item.title.get()));
    panel.read(0, [&](DBusMenuLayout const& layout) {
        QSet<int> met { 0 };
        require(isSame(panel.copy, layout) && isMenu(layout, model.menus[0], met));
    });
    panel.wait();
    return 0;
}

#include "MenuFuzz.moc"
