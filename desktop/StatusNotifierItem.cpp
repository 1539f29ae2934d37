// SPDX-License-Identifier: MIT
#include "desktop/StatusNotifierItem.h"

#include "desktop/Text.h"
#include "platform/Menu.h"
#include "platform/Utf8.h"

#include <array>
#include <utility>

namespace {

using namespace std::chrono_literals;
using Item = StatusNotifierItem;

// A title that is replaced at once, such as the waiting state's by a cached report, is not worth starting a helper for,
// which would delay the next title's pictures.
constexpr auto timeOfTitle = 10ms;

}

sd_bus_vtable const* StatusNotifierItem::members()
{
    static auto const table = std::to_array<sd_bus_vtable>({
        SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("Activate", "ii", "", (onCall<Item, &Item::requestMenu>), 0),
        SD_BUS_METHOD("SecondaryActivate", "ii", "", (onCall<Item, &Item::requestMenu>), 0),
        SD_BUS_METHOD("ContextMenu", "ii", "", (onCall<Item, &Item::requestMenu>), 0),
        SD_BUS_METHOD("Scroll", "is", "", (onCall<Item, &Item::scroll>), 0),
        SD_BUS_METHOD("ProvideXdgActivationToken", "s", "", (onCall<Item, &Item::provideActivationToken>), 0),
        SD_BUS_PROPERTY("Id", "s", (onGetText<Item, &Item::id>), 0, SD_BUS_VTABLE_PROPERTY_CONST),
        SD_BUS_PROPERTY("Category", "s", (onGetText<Item, &Item::category>), 0, SD_BUS_VTABLE_PROPERTY_CONST),
        SD_BUS_PROPERTY("Status", "s", (onGetText<Item, &Item::status>), 0, SD_BUS_VTABLE_PROPERTY_CONST),
        SD_BUS_PROPERTY("Title", "s", (onGetText<Item, &Item::title>), 0, 0),
        SD_BUS_PROPERTY("XAyatanaLabel", "s", (onGetText<Item, &Item::title>), 0, 0),
        SD_BUS_PROPERTY("XAyatanaLabelGuide", "s", (onGetText<Item, &Item::guide>), 0, 0),
        SD_BUS_PROPERTY("IconName", "s", (onGetText<Item, &Item::iconName>), 0, 0),
        SD_BUS_PROPERTY("IconThemePath", "s", (onGetText<Item, &Item::iconThemePath>), 0, 0),
        SD_BUS_PROPERTY("IconPixmap", "a(iiay)", (onGet<Item, &Item::writePixmaps>), 0, 0),
        SD_BUS_PROPERTY("IconAccessibleDesc", "s", (onGetText<Item, &Item::accessibleDescription>), 0, 0),
        SD_BUS_PROPERTY("ToolTip", "(sa(iiay)ss)", (onGet<Item, &Item::writeToolTip>), 0, 0),
        SD_BUS_PROPERTY("ItemIsMenu", "b", (onGet<Item, &Item::writeItemIsMenu>), 0, SD_BUS_VTABLE_PROPERTY_CONST),
        SD_BUS_PROPERTY("Menu", "o", (onGet<Item, &Item::writeMenuPath>), 0, SD_BUS_VTABLE_PROPERTY_CONST),
        SD_BUS_SIGNAL("NewTitle", "", 0),
        SD_BUS_SIGNAL("NewIcon", "", 0),
        SD_BUS_SIGNAL("NewIconThemePath", "s", 0),
        SD_BUS_SIGNAL("NewToolTip", "", 0),
        SD_BUS_SIGNAL("XAyatanaNewLabel", "ss", 0),
        SD_BUS_VTABLE_END,
    });
    return table.data();
}

StatusNotifierItem::StatusNotifierItem(
    platform::StatusItem& item, Look look, IconDrawer& drawer, Bus& bus, Handlers handlers)
    : item_(item)
    , look_(std::move(look))
    , drawer_(drawer)
    , bus_(bus)
    , handlers_(std::move(handlers))
    , guide_(title())
    , announced_ { title(), details(), iconName() }
    , update_(bus.loop(), [this] { update(); })
    , titleChanges_(item.title.observeChanges([this](std::string const&) { update_.request(); }))
    , menuChanges_(item.menu().observeChanges([this] { update_.request(); }))
    , object_(bus.addObject(path, interface, members(), this))
{
}

std::string StatusNotifierItem::title() const { return asPanelLabel(item_.title.get()); }

void StatusNotifierItem::setHost(StatusHost const& host)
{
    host_ = host;
    draw();
    update_.request();
}

bool StatusNotifierItem::showsLabel() const { return host_ && host_->look == StatusLook::Label; }

std::string StatusNotifierItem::iconName() const
{
    if (!pixmaps_.empty())
        return {};
    return showsLabel() && host_->coloursSymbols ? look_.iconName + "-symbolic" : look_.iconName;
}

std::string StatusNotifierItem::iconThemePath() const { return pixmaps_.empty() ? look_.themePath : std::string(); }

std::string StatusNotifierItem::accessibleDescription() const { return look_.productName + ": " + title(); }

void StatusNotifierItem::writePixmaps(sd_bus_message* reply) const
{
    sd_bus_message_open_container(reply, SD_BUS_TYPE_ARRAY, "(iiay)");
    for (auto const& pixmap : pixmaps_) {
        sd_bus_message_open_container(reply, SD_BUS_TYPE_STRUCT, "iiay");
        sd_bus_message_append(reply, "ii", pixmap.width, pixmap.height);
        sd_bus_message_append_array(reply, SD_BUS_TYPE_BYTE, pixmap.pixels.data(), pixmap.pixels.size());
        sd_bus_message_close_container(reply);
    }
    sd_bus_message_close_container(reply);
}

void StatusNotifierItem::writeToolTip(sd_bus_message* reply) const
{
    sd_bus_message_open_container(reply, SD_BUS_TYPE_STRUCT, "sa(iiay)ss");
    sd_bus_message_append(reply, "sa(iiay)", "", 0);
    append(reply, item_.title.get());
    append(reply, escapedForHtml(details()));
    sd_bus_message_close_container(reply);
}

void StatusNotifierItem::writeItemIsMenu(sd_bus_message* reply) const { sd_bus_message_append(reply, "b", 1); }

void StatusNotifierItem::writeMenuPath(sd_bus_message* reply) const { sd_bus_message_append(reply, "o", menuPath); }

// Runs after the reply, because showing a menu is slow.
int StatusNotifierItem::requestMenu(sd_bus_message* call)
{
    if (handlers_.menuRequested)
        bus_.loop().perform(handlers_.menuRequested);
    return sd_bus_reply_method_return(call, "");
}

int StatusNotifierItem::scroll(sd_bus_message* call) { return sd_bus_reply_method_return(call, ""); }

int StatusNotifierItem::provideActivationToken(sd_bus_message* call)
{
    char const* token = "";
    sd_bus_message_read(call, "s", &token);
    if (handlers_.activationTokenProvided)
        handlers_.activationTokenProvided(token);
    return sd_bus_reply_method_return(call, "");
}

// The menu's first group shows the state; the groups after it have commands.
std::string StatusNotifierItem::details() const
{
    std::string lines;
    for (auto const& item : item_.menu().items()) {
        if (item->isSeparator)
            break;
        if (!item->hidden.get())
            lines += (lines.empty() ? "" : "\n") + item->title.get();
    }
    return lines;
}

void StatusNotifierItem::update()
{
    auto const before = std::exchange(announced_, { title(), details(), iconName() });
    bool const isNewTitle = announced_.title != before.title;
    if (isNewTitle) {
        if (platform::lengthOfUtf8(announced_.title) > platform::lengthOfUtf8(guide_))
            guide_ = announced_.title;
        emit("NewTitle");
        bus_.emit(path, interface, "XAyatanaNewLabel", "ss", announced_.title.c_str(), guide_.c_str());
        draw();
    }
    if (announced_.iconName != before.iconName)
        bus_.emit(path, interface, "NewIconThemePath", "s", platform::wellFormedUtf8(iconThemePath()).c_str());
    // Panels reread the icon's description only with the icon, so this is also sent if the icon is unchanged.
    bool const isNewDescription = isNewTitle && showsLabel();
    if (std::exchange(isRedrawn_, false) || isNewDescription || announced_.iconName != before.iconName)
        emit("NewIcon");
    if (isNewTitle || announced_.details != before.details)
        emit("NewToolTip");
}

// Panels keep the last pictures until the new ones arrive.
void StatusNotifierItem::draw()
{
    if (!host_)
        return;
    if (showsLabel()) {
        drawing_.reset();
        pixmaps_.clear();
        return;
    }
    drawing_ = bus_.loop().after(timeOfTitle, [this] {
        drawer_.draw(title(), host_->look, [this](std::vector<StatusPixmap> pixmaps) { show(std::move(pixmaps)); });
    });
}

void StatusNotifierItem::show(std::vector<StatusPixmap> pixmaps)
{
    // The panel that they were drawn for may be gone.
    if (showsLabel())
        return;
    pixmaps_ = std::move(pixmaps);
    isRedrawn_ = true;
    update_.request();
}
