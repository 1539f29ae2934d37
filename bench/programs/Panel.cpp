// SPDX-License-Identifier: MIT
#include "bench/programs/Panel.h"

#include <array>
#include <cstring>
#include <string_view>
#include <utility>

namespace {

constexpr char const* watcherName = "org.kde.StatusNotifierWatcher";
constexpr char const* watcherPath = "/StatusNotifierWatcher";
constexpr char const* itemInterface = "org.kde.StatusNotifierItem";
constexpr char const* menuInterface = "com.canonical.dbusmenu";
constexpr char const* propertiesInterface = "org.freedesktop.DBus.Properties";

struct Unreference {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Message = std::unique_ptr<sd_bus_message, Unreference>;

// Discards a reply, as does a panel that has drawn it.
int ignore(sd_bus_message* /*reply*/, void* /*unused*/, sd_bus_error* /*error*/) { return 0; }

std::string text(sd_bus_message* message, char const* type)
{
    char const* value = nullptr;
    return sd_bus_message_read(message, type, &value) > 0 ? value : "";
}

std::string textInVariant(sd_bus_message* message, char const* type)
{
    char const* value = nullptr;
    return sd_bus_message_read(message, "v", type, &value) > 0 ? value : "";
}

// Reads a{sv}. The visitor reads the variants of known names, and returns whether it did.
template <typename Visitor> void readProperties(sd_bus_message* message, Visitor visit)
{
    sd_bus_message_enter_container(message, 'a', "{sv}");
    while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
        if (!visit(text(message, "s")))
            sd_bus_message_skip(message, "v");
        sd_bus_message_exit_container(message);
    }
    sd_bus_message_exit_container(message);
}

// Reads (ia{sv}av), whose last part contains more of the same.
MenuLine readLine(sd_bus_message* message)
{
    MenuLine line;
    sd_bus_message_enter_container(message, 'r', "ia{sv}av");
    sd_bus_message_read(message, "i", &line.id);
    readProperties(message, [&](std::string_view name) {
        int state = 0;
        if (name == "label")
            line.label = textInVariant(message, "s");
        else if (name == "toggle-state")
            line.isChecked = sd_bus_message_read(message, "v", "i", &state) > 0 && state == 1;
        else
            return false;
        return true;
    });
    sd_bus_message_enter_container(message, 'a', "v");
    while (sd_bus_message_enter_container(message, 'v', "(ia{sv}av)") > 0) {
        line.lines.push_back(readLine(message));
        sd_bus_message_exit_container(message);
    }
    sd_bus_message_exit_container(message);
    sd_bus_message_exit_container(message);
    return line;
}

// The property that a panel rereads on a signal.
char const* propertyOf(char const* signal)
{
    if (std::strcmp(signal, "NewTitle") == 0)
        return "Title";
    if (std::strcmp(signal, "NewIcon") == 0)
        return "IconPixmap";
    if (std::strcmp(signal, "NewToolTip") == 0)
        return "ToolTip";
    return nullptr;
}

int yes(sd_bus* /*bus*/, char const* /*path*/, char const* /*interface*/, char const* /*property*/,
    sd_bus_message* reply, void* /*panel*/, sd_bus_error* /*error*/)
{
    return sd_bus_message_append(reply, "b", 1);
}

int version(sd_bus* /*bus*/, char const* /*path*/, char const* /*interface*/, char const* /*property*/,
    sd_bus_message* reply, void* /*panel*/, sd_bus_error* /*error*/)
{
    return sd_bus_message_append(reply, "i", 0);
}

}

sd_bus_vtable const* Panel::watcher()
{
    static auto const members = std::to_array<sd_bus_vtable>({
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("RegisterStatusNotifierItem", "s", "", &Panel::registerItem, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("RegisterStatusNotifierHost", "s", "", &Panel::registerHost, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_PROPERTY("RegisteredStatusNotifierItems", "as", &Panel::items, 0, 0),
        SD_BUS_PROPERTY("IsStatusNotifierHostRegistered", "b", &yes, 0, 0),
        SD_BUS_PROPERTY("ProtocolVersion", "i", &version, 0, 0),
        SD_BUS_SIGNAL("StatusNotifierItemRegistered", "s", 0),
        SD_BUS_SIGNAL("StatusNotifierItemUnregistered", "s", 0),
        SD_BUS_SIGNAL("StatusNotifierHostRegistered", "", 0),
        SD_BUS_VTABLE_END,
    });
    return members.data();
}

std::unique_ptr<Panel> Panel::open()
{
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0)
        return {};
    std::unique_ptr<Panel> panel(new Panel(Bus(bus)));
    return panel->start() ? std::move(panel) : nullptr;
}

Panel::Panel(Bus bus)
    : bus_(std::move(bus))
{
}

bool Panel::start()
{
    auto* const bus = bus_.get();
    return sd_bus_add_object_vtable(bus, nullptr, watcherPath, watcherName, watcher(), this) >= 0
        && sd_bus_match_signal(bus, nullptr, nullptr, nullptr, itemInterface, nullptr, itemChanged, this) >= 0
        && sd_bus_match_signal(bus, nullptr, nullptr, nullptr, menuInterface, "LayoutUpdated", menuChanged, this) >= 0
        && sd_bus_request_name(bus, watcherName, 0) > 0;
}

int Panel::registerItem(sd_bus_message* message, void* panel, sd_bus_error* /*error*/)
{
    // The text is a bus name, or the path of an object of the sender.
    auto const item = text(message, "s");
    auto& self = *static_cast<Panel*>(panel);
    if (item.starts_with('/'))
        self.follow(sd_bus_message_get_sender(message), item);
    else
        self.follow(item, "/StatusNotifierItem");
    return sd_bus_reply_method_return(message, "");
}

int Panel::registerHost(sd_bus_message* message, void* panel, sd_bus_error* /*error*/)
{
    auto* const bus = static_cast<Panel*>(panel)->bus_.get();
    sd_bus_emit_signal(bus, watcherPath, watcherName, "StatusNotifierHostRegistered", "");
    return sd_bus_reply_method_return(message, "");
}

int Panel::items(sd_bus* /*bus*/, char const* /*path*/, char const* /*interface*/, char const* /*property*/,
    sd_bus_message* reply, void* panel, sd_bus_error* /*error*/)
{
    auto const& self = *static_cast<Panel*>(panel);
    if (!self.hasItem())
        return sd_bus_message_append(reply, "as", 0);
    return sd_bus_message_append(reply, "as", 1, (self.service_ + self.path_).c_str());
}

void Panel::follow(std::string service, std::string path)
{
    service_ = std::move(service);
    path_ = std::move(path);
    sd_bus_emit_signal(
        bus_.get(), watcherPath, watcherName, "StatusNotifierItemRegistered", "s", (service_ + path_).c_str());
    readAll();
}

void Panel::readAll()
{
    sd_bus_call_method_async(bus_.get(), nullptr, service_.c_str(), path_.c_str(), propertiesInterface, "GetAll",
        acceptAll, this, "s", itemInterface);
}

int Panel::acceptAll(sd_bus_message* reply, void* panel, sd_bus_error* /*error*/)
{
    auto& self = *static_cast<Panel*>(panel);
    readProperties(reply, [&](std::string_view name) {
        if (name == "XAyatanaLabel")
            self.label_ = textInVariant(reply, "s");
        else if (name == "Menu")
            self.menuPath_ = textInVariant(reply, "o");
        else
            return false;
        return true;
    });
    self.readMenu();
    return 0;
}

void Panel::readProperty(char const* name)
{
    sd_bus_call_method_async(bus_.get(), nullptr, service_.c_str(), path_.c_str(), propertiesInterface, "Get", ignore,
        nullptr, "ss", itemInterface, name);
}

void Panel::readMenu()
{
    if (!menuPath_.empty())
        sd_bus_call_method_async(bus_.get(), nullptr, service_.c_str(), menuPath_.c_str(), menuInterface, "GetLayout",
            ignore, nullptr, "iias", 0, -1, 0);
}

int Panel::itemChanged(sd_bus_message* signal, void* panel, sd_bus_error* /*error*/)
{
    auto& self = *static_cast<Panel*>(panel);
    char const* const name = sd_bus_message_get_member(signal);
    if (std::strcmp(name, "XAyatanaNewLabel") == 0) {
        self.label_ = text(signal, "s");
        ++self.toldLabels_;
    } else if (char const* const property = propertyOf(name)) {
        self.readProperty(property);
    }
    return 0;
}

int Panel::menuChanged(sd_bus_message* /*signal*/, void* panel, sd_bus_error* /*error*/)
{
    static_cast<Panel*>(panel)->readMenu();
    return 0;
}

std::optional<MenuLine> Panel::openMenu()
{
    auto const call = [this](char const* method, char const* types, auto... arguments) {
        sd_bus_message* reply = nullptr;
        sd_bus_call_method(bus_.get(), service_.c_str(), menuPath_.c_str(), menuInterface, method, nullptr, &reply,
            types, arguments...);
        return Message(reply);
    };
    auto const shown = call("AboutToShow", "i", 0);
    auto const layout = call("GetLayout", "iias", 0, -1, 0);
    unsigned revision = 0;
    if (!shown || !layout || sd_bus_message_read(layout.get(), "u", &revision) <= 0)
        return std::nullopt;
    return readLine(layout.get());
}

void Panel::click(MenuLine const& line)
{
    sd_bus_call_method_async(bus_.get(), nullptr, service_.c_str(), menuPath_.c_str(), menuInterface, "Event", ignore,
        nullptr, "isvu", line.id, "clicked", "i", 0, 0U);
}

pollfd Panel::awaited() const
{
    return { sd_bus_get_fd(bus_.get()), static_cast<short>(sd_bus_get_events(bus_.get())), 0 };
}

bool Panel::process() { return sd_bus_process(bus_.get(), nullptr) > 0; }
