// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Bus.h"
#include "platform/Menu.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

/// A menu exported over D-Bus with the com.canonical.dbusmenu protocol, version 4. The changes of one main-loop turn
/// are sent as one update, and clicks run from the main loop, never inside the call that brought them. Lines that
/// nobody has asked for cost nothing. The menu and its submenus must outlive this object. Main thread only.
class DBusMenu {
public:
    enum class TextDirection { LeftToRight, RightToLeft };

    DBusMenu(platform::Menu& menu, char const* path, TextDirection direction, Bus& bus);
    DBusMenu(DBusMenu const&) = delete;
    DBusMenu& operator=(DBusMenu const&) = delete;

    /// Adapts lines read from now on to a panel that treats only the first underscore as a mnemonic mark. The protocol
    /// treats each one as a mark.
    void setMarksFirstUnderscoreOnly(bool only) { marksFirstUnderscoreOnly_ = only; }

private:
    using Value = std::variant<bool, std::int32_t, std::string>;
    using Properties = std::map<std::string, Value>;
    using Names = std::set<std::string>;

    /// The state of a line as last reported.
    struct Line {
        std::string title;
        bool hidden = false;
        bool on = false;
        bool isSeparator = false;
        /// Whether the line belongs to a list with a check mark, and so needs room for one.
        bool isChoice = false;
        platform::Menu* submenu = nullptr;
    };

    struct Node {
        Line line;
        /// Null for the root.
        std::shared_ptr<platform::MenuItem> item;
        /// Empty until somebody asks for the lines of this submenu.
        std::optional<platform::Subscription> observer;
        std::vector<int> children;
    };

    struct LineChange {
        int id = 0;
        Properties updated;
        /// The names of properties that returned to their defaults.
        std::vector<std::string> removed;
    };

    struct Changes {
        std::vector<LineChange> lines;
        std::vector<int> layouts;
    };

    static sd_bus_vtable const* members();
    /// The values that the protocol assumes for omitted properties.
    static Properties const defaults;

    int getLayout(sd_bus_message* call);
    int getGroupProperties(sd_bus_message* call);
    int getProperty(sd_bus_message* call);
    int event(sd_bus_message* call);
    int eventGroup(sd_bus_message* call);
    int aboutToShow(sd_bus_message* call);
    int aboutToShowGroup(sd_bus_message* call);
    void writeVersion(sd_bus_message* reply) const;
    std::string status() const { return "normal"; }
    std::string textDirection() const;
    void writeIconThemePath(sd_bus_message* reply) const;

    static void write(sd_bus_message* message, Value const& value);
    static void write(sd_bus_message* message, Properties const& properties);
    static void writeProperties(sd_bus_message* message, int id, Properties const& properties);
    void writeLayout(sd_bus_message* message, int id, int depth, Names const& names);

    static bool isChoice(platform::MenuItem const& item, bool hasMark);
    static Line lineOf(platform::MenuItem const& item, bool hasMark);
    static bool isUnchanged(Line const& shown, platform::MenuItem const& item);
    /// An empty list of names selects every property.
    Properties properties(Line const& line, Names const& names = {}) const;
    static bool isSameLine(Node const& node, std::shared_ptr<platform::MenuItem> const& item, bool hasMark);

    static bool willShow(Node const& node);

    Node* find(int id);
    int add(std::shared_ptr<platform::MenuItem> item, Line line);
    void remove(int id);
    void list(int id);
    void synchronize(int id, Changes& changes);
    void updateLine(int id, Line line, Changes& changes);
    void queueEvent(int id, std::string_view name);
    void click(int id);
    void update();
    void signalLines(std::vector<LineChange> const& changes);

    Bus& bus_;
    char const* path_;
    TextDirection direction_;
    std::unordered_map<int, Node> nodes_;
    int nextId_ = 0;
    /// The lines whose submenus have changed since the last update. Parents have lower ids than their children.
    std::set<int> outdated_;
    std::uint32_t revision_ = 1;
    bool marksFirstUnderscoreOnly_ = false;
    OncePerTurn update_;
    /// Expires with the menu, and cancels queued clicks.
    std::shared_ptr<bool> life_ = std::make_shared<bool>(true);
    BusSlot object_;
};
