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

/// A menu as other programs see it over D-Bus, after the com.canonical.dbusmenu protocol, version 4. The changes of one
/// main-loop turn go out as one update, and clicks run from the main loop, never inside the call that brought them. A
/// line that nobody has asked for costs nothing. The menu and its submenus must outlive this object. Main thread only.
class DBusMenu {
public:
    enum class TextDirection { LeftToRight, RightToLeft };

    DBusMenu(platform::Menu& menu, char const* path, TextDirection direction, Bus& bus);
    DBusMenu(DBusMenu const&) = delete;
    DBusMenu& operator=(DBusMenu const&) = delete;

    /// For a panel that reads lines from now on and takes only the first underscore of each for a mark, where the
    /// protocol has it take every one.
    void setMarksFirstUnderscoreOnly(bool only) { marksFirstUnderscoreOnly_ = only; }

private:
    using Value = std::variant<bool, std::int32_t, std::string>;
    using Properties = std::map<std::string, Value>;
    using Names = std::set<std::string>;

    /// What other programs have been told of a line.
    struct Line {
        std::string title;
        bool hidden = false;
        bool on = false;
        bool isSeparator = false;
        /// Stands in a list with a check mark, so that it has room for one as well.
        bool isChoice = false;
        platform::Menu* submenu = nullptr;
    };

    struct Node {
        Line line;
        /// Nothing for the root.
        std::shared_ptr<platform::MenuItem> item;
        /// Nothing until somebody has asked for the lines under this one.
        std::optional<platform::Subscription> observer;
        std::vector<int> children;
    };

    struct LineChange {
        int id = 0;
        Properties updated;
        /// Those that went back to their defaults.
        std::vector<std::string> removed;
    };

    struct Changes {
        std::vector<LineChange> lines;
        std::vector<int> layouts;
    };

    static sd_bus_vtable const* members();
    /// What the protocol says of a line that does not carry the property.
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
    static bool isUnchanged(Line const& told, platform::MenuItem const& item);
    /// No names mean every property.
    Properties properties(Line const& line, Names const& names = {}) const;
    static bool isSameLine(Node const& node, std::shared_ptr<platform::MenuItem> const& item, bool hasMark);

    static bool willShow(Node const& node);

    Node* find(int id);
    int add(std::shared_ptr<platform::MenuItem> item, Line line);
    void remove(int id);
    void list(int id);
    void synchronize(int id, Changes& changes);
    void tell(int id, Line line, Changes& changes);
    void queueEvent(int id, std::string_view name);
    void click(int id);
    void update();
    void tellOfLines(std::vector<LineChange> const& changes);

    Bus& bus_;
    char const* path_;
    TextDirection direction_;
    std::unordered_map<int, Node> nodes_;
    int nextId_ = 0;
    /// The lines whose submenus have changed since the last update. Those further up have lower ids.
    std::set<int> outdated_;
    std::uint32_t revision_ = 1;
    bool marksFirstUnderscoreOnly_ = false;
    OncePerTurn update_;
    /// Clicks that wait for their turn go with the menu.
    std::shared_ptr<bool> life_ = std::make_shared<bool>(true);
    BusSlot object_;
};
