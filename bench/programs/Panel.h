// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <poll.h>
#include <systemd/sd-bus.h>

/// A line of an item's menu, with the lines under it.
struct MenuLine {
    int id = 0;
    std::string label;
    bool isChecked = false;
    std::vector<MenuLine> lines;
};

/// A panel on the session bus that shows one status item: after the org.kde.StatusNotifierItem protocol, with the label
/// of the Ayatana indicators and com.canonical.dbusmenu. As panels do, it reads all of an item and of its menu when the
/// item comes, and anew what the item says has changed.
class Panel {
public:
    /// Nothing when there is no bus or another panel is there.
    static std::unique_ptr<Panel> open();

    Panel(Panel const&) = delete;
    Panel& operator=(Panel const&) = delete;

    bool hasItem() const { return !service_.empty(); }
    std::string const& label() const { return label_; }
    /// How often the item has told a new label.
    int toldLabels() const { return toldLabels_; }

    /// Opens the menu and reads it. Blocks; nothing when the item does not answer.
    std::optional<MenuLine> openMenu();
    void click(MenuLine const& line);

    /// What to wait on for more to process.
    pollfd awaited() const;
    /// Handles one message; false when there is none.
    bool process();

private:
    struct Close {
        void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
    };
    using Bus = std::unique_ptr<sd_bus, Close>;

    explicit Panel(Bus bus);

    bool start();
    void follow(std::string service, std::string path);
    void readAll();
    void readProperty(char const* name);
    void readMenu();

    static int registerItem(sd_bus_message* message, void* panel, sd_bus_error* error);
    static int registerHost(sd_bus_message* message, void* panel, sd_bus_error* error);
    static int items(sd_bus* bus, char const* path, char const* interface, char const* property, sd_bus_message* reply,
        void* panel, sd_bus_error* error);
    static int itemChanged(sd_bus_message* signal, void* panel, sd_bus_error* error);
    static int menuChanged(sd_bus_message* signal, void* panel, sd_bus_error* error);
    static int acceptAll(sd_bus_message* reply, void* panel, sd_bus_error* error);

    static sd_bus_vtable const* watcher();

    Bus bus_;
    std::string service_;
    std::string path_;
    std::string menuPath_;
    std::string label_;
    int toldLabels_ = 0;
};
