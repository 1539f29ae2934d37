// SPDX-License-Identifier: MIT
#include "desktop/DBusMenu.h"

#include "desktop/ActivationToken.h"
#include "desktop/Text.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace {

constexpr int rootId = 0;
constexpr char const* interface = "com.canonical.dbusmenu";

constexpr char mark = '_';

// A single underscore would make the next letter the line's mnemonic.
std::string escaped(std::string const& title)
{
    std::string text;
    for (char const character : asMenuLine(title))
        text.append(character == mark ? 2 : 1, character);
    return text;
}

std::string escapedOnce(std::string const& title)
{
    auto text = asMenuLine(title);
    for (std::size_t at = 0; at + 1 < text.size(); ++at) {
        if (text[at] == mark && text[at + 1] != mark)
            return text.insert(at, 1, mark);
    }
    return text;
}

bool isEventName(std::string_view name)
{
    constexpr std::array<std::string_view, 4> known { "clicked", "hovered", "opened", "closed" };
    return name.starts_with("x-") || std::ranges::find(known, name) != known.end();
}

int refuse(sd_bus_message* call, char const* reason)
{
    return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_INVALID_ARGS, "%s", reason);
}

int refuseLine(sd_bus_message* call) { return refuse(call, "there is no such line"); }

std::set<std::string> readNames(sd_bus_message* call)
{
    std::set<std::string> names;
    char const* name = nullptr;
    sd_bus_message_enter_container(call, SD_BUS_TYPE_ARRAY, "s");
    while (sd_bus_message_read(call, "s", &name) > 0)
        names.insert(name);
    sd_bus_message_exit_container(call);
    return names;
}

// Repeated ids are answered only once, even if there are a million.
std::vector<int> readIds(sd_bus_message* call)
{
    std::vector<int> ids;
    std::int32_t id = 0;
    sd_bus_message_enter_container(call, SD_BUS_TYPE_ARRAY, "i");
    while (sd_bus_message_read(call, "i", &id) > 0)
        ids.push_back(id);
    sd_bus_message_exit_container(call);
    std::ranges::sort(ids);
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

void writeIds(sd_bus_message* message, std::vector<int> const& ids)
{
    sd_bus_message_append_array(message, SD_BUS_TYPE_INT32, ids.data(), ids.size() * sizeof(std::int32_t));
}

void writeNames(sd_bus_message* message, int id, std::vector<std::string> const& names)
{
    sd_bus_message_open_container(message, SD_BUS_TYPE_STRUCT, "ias");
    sd_bus_message_append(message, "i", id);
    sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "s");
    for (auto const& name : names)
        append(message, name);
    sd_bus_message_close_container(message);
    sd_bus_message_close_container(message);
}

BusMessage replyTo(sd_bus_message* call)
{
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_return(call, &reply);
    return BusMessage(reply);
}

int send(BusMessage const& reply) { return sd_bus_message_send(reply.get()); }

}

sd_bus_vtable const* DBusMenu::members()
{
    static auto const table = std::to_array<sd_bus_vtable>({
        SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("GetLayout", "iias", "u(ia{sv}av)", (onCall<DBusMenu, &DBusMenu::getLayout>), 0),
        SD_BUS_METHOD("GetGroupProperties", "aias", "a(ia{sv})", (onCall<DBusMenu, &DBusMenu::getGroupProperties>), 0),
        SD_BUS_METHOD("GetProperty", "is", "v", (onCall<DBusMenu, &DBusMenu::getProperty>), 0),
        SD_BUS_METHOD("Event", "isvu", "", (onCall<DBusMenu, &DBusMenu::event>), 0),
        SD_BUS_METHOD("EventGroup", "a(isvu)", "ai", (onCall<DBusMenu, &DBusMenu::eventGroup>), 0),
        SD_BUS_METHOD("AboutToShow", "i", "b", (onCall<DBusMenu, &DBusMenu::aboutToShow>), 0),
        SD_BUS_METHOD("AboutToShowGroup", "ai", "aiai", (onCall<DBusMenu, &DBusMenu::aboutToShowGroup>), 0),
        SD_BUS_PROPERTY("Version", "u", (onGet<DBusMenu, &DBusMenu::writeVersion>), 0, SD_BUS_VTABLE_PROPERTY_CONST),
        SD_BUS_PROPERTY("Status", "s", (onGetText<DBusMenu, &DBusMenu::status>), 0, SD_BUS_VTABLE_PROPERTY_CONST),
        SD_BUS_PROPERTY(
            "TextDirection", "s", (onGetText<DBusMenu, &DBusMenu::textDirection>), 0, SD_BUS_VTABLE_PROPERTY_CONST),
        SD_BUS_PROPERTY(
            "IconThemePath", "as", (onGet<DBusMenu, &DBusMenu::writeIconThemePath>), 0, SD_BUS_VTABLE_PROPERTY_CONST),
        SD_BUS_SIGNAL("ItemsPropertiesUpdated", "a(ia{sv})a(ias)", 0),
        SD_BUS_SIGNAL("LayoutUpdated", "ui", 0),
        SD_BUS_VTABLE_END,
    });
    return table.data();
}

DBusMenu::Properties const DBusMenu::defaults {
    { "type", "standard" },
    { "label", "" },
    { "enabled", true },
    { "visible", true },
    { "toggle-type", "" },
    { "toggle-state", -1 },
    { "children-display", "" },
};

DBusMenu::DBusMenu(platform::Menu& menu, char const* path, TextDirection direction, Bus& bus)
    : bus_(bus)
    , path_(path)
    , direction_(direction)
    , update_(bus.loop(), [this] { update(); })
    , object_(bus.addObject(path, interface, members(), this))
{
    Line root;
    root.submenu = &menu;
    add(nullptr, std::move(root));
}

std::string DBusMenu::textDirection() const { return direction_ == TextDirection::RightToLeft ? "rtl" : "ltr"; }

void DBusMenu::writeVersion(sd_bus_message* reply) const { sd_bus_message_append(reply, "u", 4); }

void DBusMenu::writeIconThemePath(sd_bus_message* reply) const { sd_bus_message_append(reply, "as", 0); }

// Any negative depth means the whole tree.
int DBusMenu::getLayout(sd_bus_message* call)
{
    int id = 0;
    int depth = 0;
    sd_bus_message_read(call, "ii", &id, &depth);
    if (!find(id))
        return refuseLine(call);
    auto const reply = replyTo(call);
    sd_bus_message_append(reply.get(), "u", revision_);
    writeLayout(reply.get(), id, depth, readNames(call));
    return send(reply);
}

// An empty list of ids means every known line.
int DBusMenu::getGroupProperties(sd_bus_message* call)
{
    auto const ids = readIds(call);
    auto const names = readNames(call);
    auto const reply = replyTo(call);
    sd_bus_message_open_container(reply.get(), SD_BUS_TYPE_ARRAY, "(ia{sv})");
    if (ids.empty()) {
        for (auto const& [id, node] : nodes_)
            writeProperties(reply.get(), id, properties(node.line, names));
    }
    for (int const id : ids) {
        if (auto const* node = find(id))
            writeProperties(reply.get(), id, properties(node->line, names));
    }
    sd_bus_message_close_container(reply.get());
    return send(reply);
}

int DBusMenu::getProperty(sd_bus_message* call)
{
    int id = 0;
    char const* name = "";
    sd_bus_message_read(call, "is", &id, &name);
    auto const* node = find(id);
    if (!node)
        return refuseLine(call);
    auto values = properties(node->line);
    values.insert(defaults.begin(), defaults.end());
    auto const value = values.find(name);
    if (value == values.end())
        return refuse(call, "a line has no such property");
    auto const reply = replyTo(call);
    write(reply.get(), value->second);
    return send(reply);
}

int DBusMenu::event(sd_bus_message* call)
{
    int id = 0;
    char const* name = "";
    sd_bus_message_read(call, "is", &id, &name);
    if (!find(id))
        return refuseLine(call);
    if (!isEventName(name))
        return refuse(call, "there is no such event");
    queueEvent(id, name);
    return sd_bus_reply_method_return(call, "");
}

int DBusMenu::eventGroup(sd_bus_message* call)
{
    std::vector<int> unknown;
    std::size_t count = 0;
    sd_bus_message_enter_container(call, SD_BUS_TYPE_ARRAY, "(isvu)");
    for (; sd_bus_message_enter_container(call, SD_BUS_TYPE_STRUCT, "isvu") > 0; ++count) {
        int id = 0;
        char const* name = "";
        sd_bus_message_read(call, "is", &id, &name);
        sd_bus_message_skip(call, "vu");
        sd_bus_message_exit_container(call);
        if (find(id))
            queueEvent(id, name);
        else
            unknown.push_back(id);
    }
    if (count > 0 && unknown.size() == count)
        return refuse(call, "there are no such lines");
    auto const reply = replyTo(call);
    writeIds(reply.get(), unknown);
    return send(reply);
}

int DBusMenu::aboutToShow(sd_bus_message* call)
{
    int id = 0;
    sd_bus_message_read(call, "i", &id);
    auto const* node = find(id);
    if (!node)
        return refuseLine(call);
    return sd_bus_reply_method_return(call, "b", int { willShow(*node) });
}

int DBusMenu::aboutToShowGroup(sd_bus_message* call)
{
    auto const ids = readIds(call);
    std::vector<int> outdated;
    std::vector<int> unknown;
    for (int const id : ids) {
        auto const* node = find(id);
        if (!node)
            unknown.push_back(id);
        else if (willShow(*node))
            outdated.push_back(id);
    }
    if (!ids.empty() && unknown.size() == ids.size())
        return refuse(call, "there are no such lines");
    auto const reply = replyTo(call);
    writeIds(reply.get(), outdated);
    writeIds(reply.get(), unknown);
    return send(reply);
}

void DBusMenu::write(sd_bus_message* message, Value const& value)
{
    if (auto const* const truth = std::get_if<bool>(&value)) {
        sd_bus_message_append(message, "v", "b", int { *truth });
    } else if (auto const* const number = std::get_if<std::int32_t>(&value)) {
        sd_bus_message_append(message, "v", "i", *number);
    } else {
        sd_bus_message_open_container(message, SD_BUS_TYPE_VARIANT, "s");
        append(message, std::get<std::string>(value));
        sd_bus_message_close_container(message);
    }
}

void DBusMenu::write(sd_bus_message* message, Properties const& properties)
{
    sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "{sv}");
    for (auto const& [name, value] : properties) {
        sd_bus_message_open_container(message, SD_BUS_TYPE_DICT_ENTRY, "sv");
        append(message, name);
        write(message, value);
        sd_bus_message_close_container(message);
    }
    sd_bus_message_close_container(message);
}

void DBusMenu::writeProperties(sd_bus_message* message, int id, Properties const& properties)
{
    sd_bus_message_open_container(message, SD_BUS_TYPE_STRUCT, "ia{sv}");
    sd_bus_message_append(message, "i", id);
    write(message, properties);
    sd_bus_message_close_container(message);
}

void DBusMenu::writeLayout(sd_bus_message* message, int id, int depth, Names const& names)
{
    sd_bus_message_open_container(message, SD_BUS_TYPE_STRUCT, "ia{sv}av");
    sd_bus_message_append(message, "i", id);
    write(message, properties(nodes_.at(id).line, names));
    sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "v");
    if (depth != 0)
        list(id);
    for (int const child : depth == 0 ? std::vector<int>() : nodes_.at(id).children) {
        sd_bus_message_open_container(message, SD_BUS_TYPE_VARIANT, "(ia{sv}av)");
        writeLayout(message, child, depth < 0 ? depth : depth - 1, names);
        sd_bus_message_close_container(message);
    }
    sd_bus_message_close_container(message);
    sd_bus_message_close_container(message);
}

// Whether the panel must ask for the submenu's lines. Changes made by willShow() are reported like any others.
bool DBusMenu::willShow(Node const& node)
{
    if (!node.line.submenu)
        return false;
    node.line.submenu->willShow();
    return !node.observer;
}

bool DBusMenu::isChoice(platform::MenuItem const& item, bool hasMark) { return hasMark && !item.isSeparator; }

DBusMenu::Line DBusMenu::lineOf(platform::MenuItem const& item, bool hasMark)
{
    return { item.shownTitle(), item.hidden.get(), item.on.get(), item.isSeparator, isChoice(item, hasMark),
        item.submenu };
}

// Compares the parts of a line that may change without giving it a new id.
bool DBusMenu::isUnchanged(Line const& shown, platform::MenuItem const& item)
{
    return shown.title == item.shownTitle() && shown.hidden == item.hidden.get() && shown.on == item.on.get();
}

DBusMenu::Properties DBusMenu::properties(Line const& line, Names const& names) const
{
    Properties values;
    auto const set = [&](char const* name, Value value) {
        if (names.empty() || names.contains(name))
            values.emplace(name, std::move(value));
    };
    if (line.isSeparator)
        set("type", "separator");
    else if (!line.title.empty())
        set("label", marksFirstUnderscoreOnly_ ? escapedOnce(line.title) : escaped(line.title));
    if (line.hidden)
        set("visible", false);
    if (line.isChoice) {
        set("toggle-type", "radio");
        set("toggle-state", line.on ? 1 : 0);
    }
    if (line.submenu)
        set("children-display", "submenu");
    return values;
}

// Whether a line of a new list may keep the id of the line it replaces. A click in progress then still reaches the text
// that the user saw, and an open menu is not rebuilt under the pointer.
bool DBusMenu::isSameLine(Node const& node, std::shared_ptr<platform::MenuItem> const& item, bool hasMark)
{
    return (node.item == item || node.line.title == item->shownTitle()) && node.line.isSeparator == item->isSeparator
        && node.line.isChoice == isChoice(*item, hasMark) && node.line.submenu == item->submenu;
}

DBusMenu::Node* DBusMenu::find(int id)
{
    auto const found = nodes_.find(id);
    return found == nodes_.end() ? nullptr : &found->second;
}

int DBusMenu::add(std::shared_ptr<platform::MenuItem> item, Line line)
{
    int const id = nextId_++;
    nodes_.emplace(id, Node { std::move(line), std::move(item), std::nullopt, {} });
    return id;
}

void DBusMenu::remove(int id)
{
    for (int const child : nodes_.at(id).children)
        remove(child);
    nodes_.erase(id);
}

// From now on, the lines of this submenu are known to others and kept up to date.
void DBusMenu::list(int id)
{
    auto& node = nodes_.at(id);
    if (!node.line.submenu || node.observer)
        return;
    node.observer = node.line.submenu->observeChanges([this, id] {
        outdated_.insert(id);
        update_.request();
    });
    Changes unheard;
    synchronize(id, unheard);
}

void DBusMenu::synchronize(int id, Changes& changes)
{
    auto& node = nodes_.at(id);
    auto const& items = node.line.submenu->items();
    bool const hasMark = std::ranges::any_of(items, [](auto const& item) { return item->on.get(); });
    auto const former = std::exchange(node.children, {});
    node.children.reserve(items.size());
    bool isNewLayout = former.size() != items.size();

    for (auto const& item : items) {
        auto const place = node.children.size();
        auto* const kept = place < former.size() ? &nodes_.at(former[place]) : nullptr;
        if (kept && isSameLine(*kept, item, hasMark)) {
            node.children.push_back(former[place]);
            kept->item = item;
            if (!isUnchanged(kept->line, *item))
                updateLine(former[place], lineOf(*item, hasMark), changes);
            continue;
        }
        isNewLayout = true;
        if (kept)
            remove(former[place]);
        node.children.push_back(add(item, lineOf(*item, hasMark)));
    }
    for (auto place = items.size(); place < former.size(); ++place)
        remove(former[place]);
    if (isNewLayout)
        changes.layouts.push_back(id);
}

void DBusMenu::updateLine(int id, Line line, Changes& changes)
{
    auto& shown = nodes_.at(id).line;
    auto const before = properties(shown);
    auto const after = properties(line);
    shown = std::move(line);

    LineChange change { id, {}, {} };
    for (auto const& [name, value] : after) {
        auto const former = before.find(name);
        if (former == before.end() || former->second != value)
            change.updated.emplace(name, value);
    }
    for (auto const& [name, value] : before) {
        if (!after.contains(name))
            change.removed.push_back(name);
    }
    if (!change.updated.empty() || !change.removed.empty())
        changes.lines.push_back(std::move(change));
}

void DBusMenu::queueEvent(int id, std::string_view name)
{
    if (name != "clicked")
        return;
    bus_.loop().perform([this, id, life = std::weak_ptr(life_)] {
        if (!life.expired())
            click(id);
    });
}

void DBusMenu::click(int id)
{
    // An earlier click's action may have removed the line.
    update();
    auto const* node = find(id);
    if (!node || !node->item)
        return;
    // Held, because the action may remove its own line.
    auto const item = node->item;
    if (!item->hidden.get())
        item->userClicked();
    // The token was for this click only.
    dropActivationToken();
}

void DBusMenu::update()
{
    Changes changes;
    for (int const id : std::exchange(outdated_, {})) {
        // A line above it may have removed it.
        if (find(id))
            synchronize(id, changes);
    }
    if (!changes.lines.empty())
        signalLines(changes.lines);
    if (changes.layouts.empty())
        return;
    int const parent = changes.layouts.size() == 1 ? changes.layouts.front() : rootId;
    bus_.emit(path_, interface, "LayoutUpdated", "ui", ++revision_, parent);
}

void DBusMenu::signalLines(std::vector<LineChange> const& changes)
{
    auto signal = bus_.signal(path_, interface, "ItemsPropertiesUpdated");
    sd_bus_message_open_container(signal.get(), SD_BUS_TYPE_ARRAY, "(ia{sv})");
    for (auto const& change : changes) {
        if (!change.updated.empty())
            writeProperties(signal.get(), change.id, change.updated);
    }
    sd_bus_message_close_container(signal.get());
    sd_bus_message_open_container(signal.get(), SD_BUS_TYPE_ARRAY, "(ias)");
    for (auto const& change : changes) {
        if (!change.removed.empty())
            writeNames(signal.get(), change.id, change.removed);
    }
    sd_bus_message_close_container(signal.get());
    bus_.send(std::move(signal));
}
