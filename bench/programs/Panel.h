// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <poll.h>
#include <systemd/sd-bus.h>

/// A line of an item's menu with its child lines.
struct MenuLine {
    int id = 0;
    std::string label;
    bool isChecked = false;
    std::vector<MenuLine> lines;
};

/// A panel on the session bus that shows one status item. It supports the org.kde.StatusNotifierItem protocol with the
/// Ayatana indicators' label, and com.canonical.dbusmenu. Like other panels, it reads everything when an item appears,
/// and rereads whatever the item reports as changed.
class Panel {
public:
    /// Returns null if there is no bus, or if there is another panel.
    static std::unique_ptr<Panel> open();

    Panel(Panel const&) = delete;
    Panel& operator=(Panel const&) = delete;

    bool hasItem() const { return !service_.empty(); }
    std::string const& label() const { return label_; }
    /// The number of new labels that the item has reported.
    int reportedLabels() const { return toldLabels_; }

    /// Opens the menu and reads it. Blocks; returns nothing if the item does not answer.
    std::optional<MenuLine> openMenu();
    void click(MenuLine const& line);

    /// The descriptor and events to wait for before calling process().
    pollfd awaited() const;
    /// Handles one message. Returns false if there is none.
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
