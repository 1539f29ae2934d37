// SPDX-License-Identifier: MIT
#include "desktop/DBusMenu.h"

#include "desktop/ActivationToken.h"
#include "windows/Text.h"

#include <QDBusMetaType>
#include <QGuiApplication>

#include <algorithm>
#include <array>

namespace {

constexpr int rootId = 0;

constexpr QLatin1Char mark('_');

// A single underscore would mark the next letter as the line's key.
QString escaped(std::string const& title) { return asMenuLine(title).replace(mark, QStringLiteral("__")); }

QString escapedOnce(std::string const& title)
{
    auto text = asMenuLine(title);
    for (qsizetype at = 0; at + 1 < text.size(); ++at) {
        if (text[at] == mark && text[at + 1] != mark)
            return text.insert(at, mark);
    }
    return text;
}

// What the protocol says of a line that does not carry the property.
QVariantMap const& defaults()
{
    static QVariantMap const values {
        { QStringLiteral("type"), QStringLiteral("standard") },
        { QStringLiteral("label"), QString() },
        { QStringLiteral("enabled"), true },
        { QStringLiteral("visible"), true },
        { QStringLiteral("toggle-type"), QString() },
        { QStringLiteral("toggle-state"), -1 },
        { QStringLiteral("children-display"), QString() },
    };
    return values;
}

bool isEventName(QString const& name)
{
    static constexpr std::array known { "clicked", "hovered", "opened", "closed" };
    return name.startsWith(QLatin1String("x-"))
        || std::ranges::any_of(known, [&name](char const* event) { return name == QLatin1String(event); });
}

QSet<QString> setOf(QStringList const& names) { return { names.begin(), names.end() }; }

}

QDBusArgument& operator<<(QDBusArgument& argument, DBusMenuProperties const& line)
{
    argument.beginStructure();
    argument << line.id << line.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument const& operator>>(QDBusArgument const& argument, DBusMenuProperties& line)
{
    argument.beginStructure();
    argument >> line.id >> line.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, DBusMenuRemovedProperties const& line)
{
    argument.beginStructure();
    argument << line.id << line.names;
    argument.endStructure();
    return argument;
}

QDBusArgument const& operator>>(QDBusArgument const& argument, DBusMenuRemovedProperties& line)
{
    argument.beginStructure();
    argument >> line.id >> line.names;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, DBusMenuLayout const& line)
{
    argument.beginStructure();
    argument << line.id << line.properties;
    argument.beginArray(QMetaType::fromType<QDBusVariant>());
    for (auto const& child : line.children)
        argument << QDBusVariant(QVariant::fromValue(child));
    argument.endArray();
    argument.endStructure();
    return argument;
}

QDBusArgument const& operator>>(QDBusArgument const& argument, DBusMenuLayout& line)
{
    argument.beginStructure();
    argument >> line.id >> line.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        line.children.push_back(qdbus_cast<DBusMenuLayout>(child.variant()));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, DBusMenuEvent const& event)
{
    argument.beginStructure();
    argument << event.id << event.name << event.data << event.timestamp;
    argument.endStructure();
    return argument;
}

QDBusArgument const& operator>>(QDBusArgument const& argument, DBusMenuEvent& event)
{
    argument.beginStructure();
    argument >> event.id >> event.name >> event.data >> event.timestamp;
    argument.endStructure();
    return argument;
}

DBusMenu::DBusMenu(platform::Menu& menu)
    : update_([this] { update(); })
{
    qDBusRegisterMetaType<DBusMenuProperties>();
    qDBusRegisterMetaType<QList<DBusMenuProperties>>();
    qDBusRegisterMetaType<DBusMenuRemovedProperties>();
    qDBusRegisterMetaType<QList<DBusMenuRemovedProperties>>();
    qDBusRegisterMetaType<DBusMenuLayout>();
    qDBusRegisterMetaType<DBusMenuEvent>();
    qDBusRegisterMetaType<QList<DBusMenuEvent>>();
    Line root;
    root.submenu = &menu;
    add(nullptr, std::move(root));
}

QString DBusMenu::textDirection() const
{
    return QGuiApplication::isRightToLeft() ? QStringLiteral("rtl") : QStringLiteral("ltr");
}

uint DBusMenu::GetLayout(int parentId, int recursionDepth, QStringList const& propertyNames, DBusMenuLayout& layout)
{
    if (findOrRefuse(parentId))
        layout = this->layout(parentId, recursionDepth, setOf(propertyNames));
    return revision_;
}

QList<DBusMenuProperties> DBusMenu::GetGroupProperties(QList<int> const& ids, QStringList const& propertyNames)
{
    auto const names = setOf(propertyNames);
    QList<DBusMenuProperties> found;
    if (ids.isEmpty()) {
        for (auto const& [id, node] : nodes_)
            found.push_back({ id, properties(node.line, names) });
        return found;
    }
    // An id that is asked for a million times is answered once.
    for (int const id : QSet<int>(ids.begin(), ids.end())) {
        if (auto const* node = find(id))
            found.push_back({ id, properties(node->line, names) });
    }
    return found;
}

QDBusVariant DBusMenu::GetProperty(int id, QString const& name)
{
    auto const* node = findOrRefuse(id);
    if (!node)
        return {};
    auto const value = properties(node->line).value(name, defaults().value(name));
    if (value.isValid())
        return QDBusVariant(value);
    sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("a line has no such property"));
    return {};
}

void DBusMenu::Event(int id, QString const& eventId, QDBusVariant const& /*data*/, uint /*timestamp*/)
{
    if (!findOrRefuse(id))
        return;
    if (!isEventName(eventId)) {
        sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("there is no such event"));
        return;
    }
    queueEvent(id, eventId);
}

QList<int> DBusMenu::EventGroup(QList<DBusMenuEvent> const& events)
{
    QList<int> unknown;
    for (auto const& event : events) {
        if (find(event.id))
            queueEvent(event.id, event.name);
        else
            unknown.push_back(event.id);
    }
    if (!events.isEmpty() && unknown.size() == events.size())
        sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("there are no such lines"));
    return unknown;
}

bool DBusMenu::AboutToShow(int id)
{
    auto const* node = findOrRefuse(id);
    return node && willShow(*node);
}

QList<int> DBusMenu::AboutToShowGroup(QList<int> const& ids, QList<int>& idErrors)
{
    QList<int> outdated;
    for (int const id : QSet<int>(ids.begin(), ids.end())) {
        auto const* node = find(id);
        if (!node)
            idErrors.push_back(id);
        else if (willShow(*node))
            outdated.push_back(id);
    }
    if (!ids.isEmpty() && outdated.isEmpty() && idErrors.size() == QSet<int>(ids.begin(), ids.end()).size())
        sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("there are no such lines"));
    return outdated;
}

// Whether the lines under it have to be asked for. What changes at this moment is told like any other change.
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
    return { item.title.get(), item.hidden.get(), item.on.get(), item.isSeparator, isChoice(item, hasMark),
        item.submenu };
}

// What else a line that goes on under its id can have changed.
bool DBusMenu::isUnchanged(Line const& told, platform::MenuItem const& item)
{
    return told.title == item.title.get() && told.hidden == item.hidden.get() && told.on == item.on.get();
}

QVariantMap DBusMenu::properties(Line const& line, QSet<QString> const& names) const
{
    QVariantMap values;
    auto const set = [&](QString const& name, QVariant const& value) {
        if (names.isEmpty() || names.contains(name))
            values.insert(name, value);
    };
    if (line.isSeparator)
        set(QStringLiteral("type"), QStringLiteral("separator"));
    else if (!line.title.empty())
        set(QStringLiteral("label"), marksFirstUnderscoreOnly_ ? escapedOnce(line.title) : escaped(line.title));
    if (line.hidden)
        set(QStringLiteral("visible"), false);
    if (line.isChoice) {
        set(QStringLiteral("toggle-type"), QStringLiteral("checkmark"));
        set(QStringLiteral("toggle-state"), line.on ? 1 : 0);
    }
    if (line.submenu)
        set(QStringLiteral("children-display"), QStringLiteral("submenu"));
    return values;
}

// Whether a line of a new list may go on under the id of the one that stood in its place. A click that is under way
// then still meets the text that the user saw, and an open menu is not rebuilt under the pointer.
bool DBusMenu::isSameLine(Node const& node, std::shared_ptr<platform::MenuItem> const& item, bool hasMark)
{
    return (node.item == item || node.line.title == item->title.get()) && node.line.isSeparator == item->isSeparator
        && node.line.isChoice == isChoice(*item, hasMark) && node.line.submenu == item->submenu;
}

DBusMenu::Node* DBusMenu::find(int id)
{
    auto const found = nodes_.find(id);
    return found == nodes_.end() ? nullptr : &found->second;
}

DBusMenu::Node* DBusMenu::findOrRefuse(int id)
{
    auto* const node = find(id);
    if (!node)
        sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("there is no such line"));
    return node;
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

// From now on the lines under this one are known to others, and kept up to date.
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
                tell(former[place], lineOf(*item, hasMark), changes);
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

void DBusMenu::tell(int id, Line line, Changes& changes)
{
    auto& told = nodes_.at(id).line;
    auto const before = properties(told);
    auto const after = properties(line);
    told = std::move(line);

    DBusMenuProperties updated { id, {} };
    for (auto const& [name, value] : after.asKeyValueRange()) {
        if (before.value(name) != value)
            updated.properties.insert(name, value);
    }
    DBusMenuRemovedProperties removed { id, {} };
    for (auto const& [name, value] : before.asKeyValueRange()) {
        if (!after.contains(name))
            removed.names.push_back(name);
    }
    if (!updated.properties.isEmpty())
        changes.updated.push_back(updated);
    if (!removed.names.isEmpty())
        changes.removed.push_back(removed);
}

DBusMenuLayout DBusMenu::layout(int id, int depth, QSet<QString> const& names)
{
    DBusMenuLayout result { id, properties(nodes_.at(id).line, names), {} };
    if (depth == 0)
        return result;
    list(id);
    for (int const child : nodes_.at(id).children)
        result.children.push_back(layout(child, depth < 0 ? depth : depth - 1, names));
    return result;
}

void DBusMenu::queueEvent(int id, QString const& name)
{
    if (name == QLatin1String("clicked"))
        QMetaObject::invokeMethod(this, [this, id] { click(id); }, Qt::QueuedConnection);
}

void DBusMenu::click(int id)
{
    // The action of a click before this one may have taken the line away.
    update();
    auto const* node = find(id);
    if (!node || !node->item)
        return;
    // Kept, for the action may take its own line away.
    auto const item = node->item;
    if (!item->hidden.get())
        item->userClicked();
    // It was for this click alone.
    dropActivationToken();
}

void DBusMenu::update()
{
    Changes changes;
    for (int const id : std::exchange(outdated_, {})) {
        // A line above it may have taken it away.
        if (find(id))
            synchronize(id, changes);
    }
    if (!changes.updated.isEmpty() || !changes.removed.isEmpty())
        Q_EMIT ItemsPropertiesUpdated(changes.updated, changes.removed);
    if (changes.layouts.empty())
        return;
    Q_EMIT LayoutUpdated(++revision_, changes.layouts.size() == 1 ? changes.layouts.front() : rootId);
}
