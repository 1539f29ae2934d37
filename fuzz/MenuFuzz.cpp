// SPDX-License-Identifier: MIT
// Runs the status item and its menu on a private connection, with both ends in this process. A panel makes valid and
// invalid calls while the model changes.
#include "demo/PeerBus.h"
#include "desktop/DBusMenu.h"
#include "desktop/StatusNotifierItem.h"
#include "desktop/Text.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <optional>
#include <set>
#include <span>

using platform::Menu;
using platform::MenuItem;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// The fuzzer's bytes, followed by zeros.
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

    /// Contains no NUL, since the program's texts cannot either.
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

/// Three menus, each of which can be a submenu of the ones before it.
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

/// Opens a container in a message; values written during its lifetime go into it.
class Container {
public:
    Container(sd_bus_message* message, char kind, std::string const& contents)
        : message_(message)
    {
        sd_bus_message_open_container(message_, kind, contents.c_str());
    }
    Container(Container const&) = delete;
    Container& operator=(Container const&) = delete;
    ~Container() { sd_bus_message_close_container(message_); }

private:
    sd_bus_message* message_;
};

struct Argument {
    std::string type;
    std::function<void(sd_bus_message* message)> write;
};

template <typename Value> Argument simple(char const* type, Value value)
{
    return { type, [=](sd_bus_message* message) { sd_bus_message_append(message, type, value); } };
}

Argument text(std::string value)
{
    return { "s", [value = std::move(value)](sd_bus_message* message) { append(message, value); } };
}

Argument variant(Argument content)
{
    return { "v", [content = std::move(content)](sd_bus_message* message) {
                Container const variant(message, 'v', content.type);
                content.write(message);
            } };
}

Argument list(char const* type, std::vector<Argument> elements)
{
    return { std::string("a") + type, [type, elements = std::move(elements)](sd_bus_message* message) {
                Container const list(message, 'a', type);
                for (auto const& element : elements)
                    element.write(message);
            } };
}

/// A structure or a dictionary entry.
Argument group(char kind, char const* types, std::vector<Argument> parts)
{
    return { kind == 'r' ? '(' + std::string(types) + ')' : '{' + std::string(types) + '}',
        [kind, types, parts = std::move(parts)](sd_bus_message* message) {
            Container const group(message, kind, types);
            for (auto const& part : parts)
                part.write(message);
        } };
}

// Each level is made only when it is written, since most never are.
Argument nestedNumber(std::size_t depth)
{
    if (depth == 0)
        return simple("i", 0);
    return { "v", [depth](sd_bus_message* message) { variant(nestedNumber(depth - 1)).write(message); } };
}

// A line with two child lines, each of which has two more, and so on.
Argument tree(std::size_t depth)
{
    return { "(ia{sv}av)", [depth](sd_bus_message* message) {
                std::vector<Argument> children;
                if (depth > 0)
                    children.assign(2, variant(tree(depth - 1)));
                group('r', "ia{sv}av", { simple("i", 0), list("{sv}", {}), list("v", children) }).write(message);
            } };
}

std::string word(Bytes& bytes)
{
    static constexpr std::array words { "clicked", "hovered", "x-", "label", "visible", "type", "Title", "ToolTip",
        "IconPixmap", menuInterface, itemInterface };
    auto const choice = bytes.below(words.size() + 1);
    return choice < words.size() ? words.at(choice) : bytes.text();
}

Argument oddArgument(Bytes& bytes)
{
    auto const nested = nestedNumber(bytes.below(50));
    auto const layout = tree(bytes.below(8));
    auto const key = text(word(bytes));
    switch (bytes.below(12)) {
    case 1:
        return layout;
    case 2:
        return simple("b", 1);
    case 3:
        return simple("d", 1e300);
    case 4:
        return simple("x", std::int64_t { 7 });
    case 5:
        return list("y", std::vector(300, simple("y", 'x')));
    case 7:
        return simple("o", "/");
    case 8:
        return list("{sv}", { group('e', "sv", { key, variant(nested) }) });
    case 9:
        return simple("g", "a{sv}");
    case 10:
        return list("s", {});
    case 11:
        return list("v", { variant(simple("i", 1)), variant(nested) });
    default:
        return nested;
    }
}

Argument argument(char kind, Bytes& bytes)
{
    auto const count = kind == 'i' || kind == 's' ? 0 : bytes.below(8);
    std::vector<Argument> ids;
    std::vector<Argument> words;
    std::vector<Argument> events;
    for (std::size_t i = 0; i < count; ++i) {
        ids.push_back(simple("i", bytes.number()));
        words.push_back(text(word(bytes)));
        events.push_back(group('r', "isvu", { ids.back(), words.back(), variant(simple("i", 0)), simple("u", 0U) }));
    }
    switch (kind) {
    case 'i':
        return simple("i", bytes.number());
    case 's':
        return text(word(bytes));
    case 'u':
        return simple("u", 0U);
    case 'S':
        return list("s", std::move(words));
    case 'I':
        ids.resize(count == 7 ? 5'007 : count, simple("i", 1));
        return list("i", std::move(ids));
    case 'E':
        return list("(isvu)", std::move(events));
    default:
        return variant(oddArgument(bytes));
    }
}

/// A line as a panel stores it, with values of all types converted to text.
struct Line {
    int id = 0;
    std::map<std::string, std::string> properties;
    std::vector<Line> children;

    bool operator==(Line const&) const = default;
};

template <typename Read> void readEach(sd_bus_message* message, char container, char const* contents, Read const& read)
{
    while (sd_bus_message_enter_container(message, container, contents) > 0) {
        read();
        sd_bus_message_exit_container(message);
    }
}

template <typename Read> void readList(sd_bus_message* message, char const* contents, Read const& read)
{
    require(sd_bus_message_enter_container(message, 'a', contents) >= 0);
    read();
    require(sd_bus_message_exit_container(message) >= 0);
}

int readNumber(sd_bus_message* message, char const* type = "i")
{
    int number = 0;
    require(sd_bus_message_read(message, type, &number) > 0);
    return number;
}

// Returns nothing at the end of a list.
std::optional<std::string> readText(sd_bus_message* message)
{
    char const* text = nullptr;
    int const found = sd_bus_message_read(message, "s", &text);
    require(found >= 0);
    return found > 0 ? std::optional(text) : std::nullopt;
}

auto readProperties(sd_bus_message* message)
{
    std::map<std::string, std::string> properties;
    readList(message, "{sv}", [&] {
        readEach(message, 'e', "sv", [&] {
            auto& value = properties[readText(message).value()];
            char const* type = nullptr;
            require(sd_bus_message_peek_type(message, nullptr, &type) > 0);
            std::string const known = type;
            readEach(message, 'v', known.c_str(), [&] {
                value = known == "s" ? readText(message).value() : std::to_string(readNumber(message, known.c_str()));
            });
        });
    });
    return properties;
}

Line readLine(sd_bus_message* message)
{
    Line line;
    require(sd_bus_message_enter_container(message, 'r', "ia{sv}av") > 0);
    line.id = readNumber(message);
    line.properties = readProperties(message);
    readList(message, "v",
        [&] { readEach(message, 'v', "(ia{sv}av)", [&] { line.children.push_back(readLine(message)); }); });
    sd_bus_message_exit_container(message);
    return line;
}

Line* find(Line& line, int id)
{
    if (line.id == id)
        return &line;
    for (auto& child : line.children) {
        if (auto* const found = find(child, id))
            return found;
    }
    return nullptr;
}

std::string escaped(std::string const& title)
{
    std::string label;
    for (char const character : asMenuLine(title))
        label.append(character == '_' ? 2 : 1, character);
    return label;
}

// Whether a panel's layout matches the model, with an id for each line that has not occurred before.
bool isMenu(Line const& layout, Menu const& menu, std::set<int>& met)
{
    using Value = std::optional<std::string>;
    bool const areChoices = std::ranges::any_of(menu.items(), [](auto const& item) { return item->on.get(); });
    return std::ranges::equal(layout.children, menu.items(), [&](auto const& line, auto const& item) {
        auto const has = [&line](char const* name, Value const& value) {
            auto const found = line.properties.find(name);
            return value == (found == line.properties.end() ? Value() : found->second);
        };
        auto const label = escaped(item->title.get());
        return met.insert(line.id).second && has("type", item->isSeparator ? Value("separator") : Value())
            && has("label", item->isSeparator || label.empty() ? Value() : label)
            && has("visible", item->hidden.get() ? Value("0") : Value())
            && has("toggle-state", areChoices && !item->isSeparator ? std::to_string(item->on.get()) : Value())
            && (item->submenu ? isMenu(line, *item->submenu, met) : line.children.empty());
    });
}

/// Calls the item and the menu, and keeps a copy of the menu as it was reported.
class Panel {
public:
    explicit Panel(Bus& bus)
        : bus_(bus)
        , menuSignals_(
              bus.listen(nullptr, nullptr, menuInterface, nullptr, [this](sd_bus_message* signal) { receive(signal); }))
        , itemSignals_(
              bus.listen(nullptr, nullptr, itemInterface, nullptr, [this](sd_bus_message* signal) { receive(signal); }))
    {
    }

    void call(Bytes& bytes)
    {
        struct Member {
            char const* interface;
            char const* name;
            /// One letter per argument, as understood by argument().
            std::string_view arguments;
            std::string_view signature;
        };
        static constexpr std::array<Member, 15> members { { { menuInterface, "GetLayout", "iiS", "iias" },
            { menuInterface, "GetGroupProperties", "IS", "aias" }, { menuInterface, "GetProperty", "is", "is" },
            { menuInterface, "Event", "isvu", "isvu" }, { menuInterface, "EventGroup", "E", "a(isvu)" },
            { menuInterface, "AboutToShow", "i", "i" }, { menuInterface, "AboutToShowGroup", "I", "ai" },
            { itemInterface, "Activate", "ii", "ii" }, { itemInterface, "Scroll", "is", "is" },
            { itemInterface, "ProvideXdgActivationToken", "s", "s" }, { propertiesInterface, "Get", "ss", "ss" },
            { propertiesInterface, "GetAll", "s", "s" }, { propertiesInterface, "Set", "ssv", "ssv" },
            { itemInterface, "SecondaryActivate", "ii", "ii" }, { itemInterface, "ContextMenu", "ii", "ii" } } };
        auto const& member = members.at(bytes.below(members.size()));
        auto const fault = bytes.below(8);
        std::vector<Argument> arguments;
        for (char const kind : member.arguments)
            arguments.push_back(fault == 7 && bytes.below(2) == 1 ? oddArgument(bytes) : argument(kind, bytes));
        if (fault == 6)
            arguments.push_back(oddArgument(bytes));
        else if (fault == 5)
            arguments.pop_back();
        bool const toMenu = member.interface == menuInterface || fault == 3;
        auto message = bus_.methodCall(nullptr, toMenu ? StatusNotifierItem::menuPath : StatusNotifierItem::path,
            member.interface, fault == 4 ? word(bytes).c_str() : member.name);
        // Not every word is a valid member name.
        if (!message)
            return;
        for (auto const& each : arguments)
            each.write(message.get());
        // Properties are handled by sd-bus alone, which tolerates more mistakes.
        bool const isMalformed = member.interface != propertiesInterface && fault != 4
            && sd_bus_message_get_signature(message.get(), 1) != member.signature;
        bool const isNowhere = member.interface == itemInterface && toMenu;
        send(std::move(message), [mustFail = isMalformed || isNowhere](sd_bus_message* reply) {
            require(!mustFail || sd_bus_message_is_method_error(reply, nullptr) > 0);
        });
    }

    void read(int id, std::function<void(Line const&)> handler)
    {
        auto message = bus_.methodCall(nullptr, StatusNotifierItem::menuPath, menuInterface, "GetLayout");
        sd_bus_message_append(message.get(), "iias", id, -1, 0);
        send(std::move(message), [id, handler = std::move(handler)](sd_bus_message* reply) {
            bool const isRefused = sd_bus_message_is_method_error(reply, nullptr) > 0;
            require(!isRefused || id != 0);
            if (isRefused)
                return;
            sd_bus_message_skip(reply, "u");
            handler(readLine(reply));
        });
    }

    void refresh(int id)
    {
        read(id, [this, id](Line const& layout) {
            if (auto* const line = find(copy, id))
                *line = layout;
        });
    }

    /// Whether every call was answered and the connection is still open.
    bool isContent() const { return pending_ == 0 && bus_.isConnected(); }

    Line copy;
    std::string label;

private:
    void send(BusMessage message, Bus::Handler answered)
    {
        ++pending_;
        calls_.push_back(bus_.call(std::move(message), [this, answered = std::move(answered)](sd_bus_message* reply) {
            --pending_;
            answered(reply);
        }));
        require(calls_.back() != nullptr);
    }

    void receive(sd_bus_message* signal)
    {
        std::string_view const name = sd_bus_message_get_member(signal);
        if (name == "LayoutUpdated") {
            sd_bus_message_skip(signal, "u");
            refresh(readNumber(signal));
        } else if (name == "XAyatanaNewLabel") {
            label = readText(signal).value();
        } else if (name == "ItemsPropertiesUpdated") {
            update(signal);
        }
    }

    void update(sd_bus_message* signal)
    {
        Line unknown;
        auto const readLineId = [&]() -> Line& {
            auto* const line = find(copy, readNumber(signal));
            return line ? *line : unknown;
        };
        readList(signal, "(ia{sv})", [&] {
            readEach(signal, 'r', "ia{sv}", [&] {
                auto& line = readLineId();
                for (auto const& [name, value] : readProperties(signal))
                    line.properties[name] = value;
            });
        });
        readList(signal, "(ias)", [&] {
            readEach(signal, 'r', "ias", [&] {
                auto& line = readLineId();
                readList(signal, "s", [&] {
                    while (auto const name = readText(signal))
                        line.properties.erase(*name);
                });
            });
        });
    }

    Bus& bus_;
    std::vector<BusSlot> calls_;
    int pending_ = 0;
    BusSlot menuSignals_;
    BusSlot itemSignals_;
};

/// Both ends, created once for all inputs.
struct Connection {
    DesktopRunLoop loop;
    PeerBus ends { loop, loop };
};

/// Rejects every task, so that the drawing helper is never started.
struct NoQueues final : platform::BackgroundQueues {
    bool async(std::string const& /*label*/, platform::Task /*task*/) override { return false; }
};

}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static Connection connection;
    auto& [loop, ends] = connection;
    Bytes bytes(data, size);
    Model model;
    NoQueues queues;
    IconDrawer drawer("/nowhere", loop, queues);
    DBusMenu menu(model.menus[0], StatusNotifierItem::menuPath, DBusMenu::TextDirection::LeftToRight, ends.program);
    StatusNotifierItem item(model.item, { .productName = "Meter", .iconName = "meter", .themePath = "/icons" }, drawer,
        ends.program, { .menuRequested = [] { }, .activationTokenProvided = [](std::string const&) { } });

    Panel panel(ends.panel);
    panel.refresh(0);
    while (!bytes.isEmpty()) {
        auto const turn = bytes.below(8);
        if (turn == 0) {
            ends.settle();
        } else if (turn == 1) {
            loop.runDue();
        } else if (turn == 2) {
            model.item.title.set(bytes.text());
            auto const kind = bytes.below(6);
            item.setHost({ .look = static_cast<StatusLook>(kind % 3), .coloursSymbols = kind >= 3 });
        } else if (turn < 5) {
            model.change(bytes);
        } else {
            panel.call(bytes);
        }
    }
    ends.settle();
    require(panel.isContent() && panel.label == asPanelLabel(model.item.title.get()));
    panel.read(0, [&](Line const& layout) {
        std::set<int> met { 0 };
        require(panel.copy == layout && isMenu(layout, model.menus[0], met));
    });
    ends.settle();
    require(panel.isContent());
    return 0;
}
