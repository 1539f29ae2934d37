// SPDX-License-Identifier: MIT
#include "desktop/SingleInstance.h"

#include "desktop/ActivationToken.h"
#include "desktop/Environment.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

using namespace std::chrono_literals;

// Long enough for a first instance that is still starting.
constexpr auto patience = 3s;

constexpr char const* interface = "org.freedesktop.Application";
constexpr char const* tokenKey = "activation-token";

std::string pathOf(std::string identifier)
{
    std::ranges::replace(identifier, '.', '/');
    std::ranges::replace(identifier, '-', '_');
    return '/' + identifier;
}

// Reads the activation data, of type a{sv}.
std::string tokenIn(sd_bus_message* call)
{
    std::string token;
    sd_bus_message_enter_container(call, SD_BUS_TYPE_ARRAY, "{sv}");
    while (sd_bus_message_enter_container(call, SD_BUS_TYPE_DICT_ENTRY, "sv") > 0) {
        char const* key = "";
        char const* value = "";
        sd_bus_message_read(call, "s", &key);
        if (std::string_view(key) == tokenKey && sd_bus_message_read(call, "v", "s", &value) > 0)
            token = value;
        else
            sd_bus_message_skip(call, "v");
        sd_bus_message_exit_container(call);
    }
    return token;
}

}

sd_bus_vtable const* SingleInstance::members()
{
    static auto const table = std::to_array<sd_bus_vtable>({
        SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("Activate", "a{sv}", "", (onCall<SingleInstance, &SingleInstance::activate>), 0),
        SD_BUS_METHOD("Open", "asa{sv}", "", (onCall<SingleInstance, &SingleInstance::open>), 0),
        SD_BUS_METHOD("ActivateAction", "sava{sv}", "", (onCall<SingleInstance, &SingleInstance::activateAction>), 0),
        SD_BUS_VTABLE_END,
    });
    return table.data();
}

SingleInstance::SingleInstance(std::string identifier, Bus& bus)
    : identifier_(std::move(identifier))
    , path_(pathOf(identifier_))
    , bus_(bus)
    , activation_(bus.loop(), [this] {
        if (activated_)
            activated_();
    })
{
}

SingleInstance::~SingleInstance() { bus_.send(bus_.callBus("ReleaseName", identifier_)); }

SingleInstance::Outcome SingleInstance::start()
{
    if (!bus_.isConnected())
        return Outcome::IsFirst;
    // The object is registered before the name, so that whoever sees the name can call it.
    object_ = bus_.addObject(path_.c_str(), interface, members(), this);
    if (becomeFirst())
        return Outcome::IsFirst;
    if (activateFirst())
        return Outcome::ActivatedFirst;
    // A first instance that was ending has released its name by now.
    return becomeFirst() ? Outcome::IsFirst : Outcome::FirstIsSilent;
}

// Also returns true if the bus does not answer.
bool SingleInstance::becomeFirst()
{
    constexpr std::uint32_t doNotQueue = 4;
    constexpr std::uint32_t isOwner = 1;
    auto message = bus_.callBus("RequestName", identifier_);
    sd_bus_message_append(message.get(), "u", doNotQueue);
    auto const reply = bus_.callAndWait(std::move(message), patience);
    std::uint32_t outcome = isOwner;
    if (reply)
        sd_bus_message_read(reply.get(), "u", &outcome);
    return outcome == isOwner;
}

bool SingleInstance::activateFirst()
{
    auto message = bus_.methodCall(identifier_.c_str(), path_.c_str(), interface, "Activate");
    auto const token = environmentText("XDG_ACTIVATION_TOKEN");
    if (token.empty())
        sd_bus_message_append(message.get(), "a{sv}", 0);
    else
        sd_bus_message_append(message.get(), "a{sv}", 1, tokenKey, "s", platform::wellFormedUtf8(token).c_str());
    return bus_.callAndWait(std::move(message), patience) != nullptr;
}

int SingleInstance::activate(sd_bus_message* call)
{
    dropActivationToken();
    keepActivationToken(tokenIn(call));
    // The caller gets its reply first.
    activation_.request();
    return sd_bus_reply_method_return(call, "");
}

int SingleInstance::open(sd_bus_message* call)
{
    sd_bus_message_skip(call, "as");
    return activate(call);
}

int SingleInstance::activateAction(sd_bus_message* call)
{
    sd_bus_message_skip(call, "sav");
    return activate(call);
}
