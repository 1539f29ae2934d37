// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/DesktopRunLoop.h"
#include "desktop/OncePerTurn.h"
#include "platform/Property.h"

#include <systemd/sd-bus.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

/// Gives up what sd-bus counts references of.
struct BusRelease {
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};

using BusConnection = std::unique_ptr<sd_bus, BusRelease>;
using BusMessage = std::unique_ptr<sd_bus_message, BusRelease>;
/// Keeps an object, an observation or a call that waits for its answer, until it goes.
using BusSlot = std::unique_ptr<sd_bus_slot, BusRelease>;

/// A connection to a message bus, driven by the main loop; also one to no bus at all, where nobody is and nothing ever
/// answers. It waits for nobody, and handlers run from the main loop. Main thread only.
class Bus {
public:
    using Handler = std::function<void(sd_bus_message* message)>;

    /// Connects to the user's session bus. One that does not let us in within some seconds counts as none.
    explicit Bus(DesktopRunLoop& loop);
    /// Takes over a connection that was started, or nothing.
    Bus(DesktopRunLoop& loop, BusConnection connection);
    ~Bus();
    Bus(Bus const&) = delete;
    Bus& operator=(Bus const&) = delete;

    DesktopRunLoop& loop() const { return loop_; }
    bool isConnected() const { return connection_ != nullptr; }
    /// Our own name on the bus.
    char const* uniqueName() const;

    /// Answers calls to the members of an object, which are handed over to it.
    [[nodiscard]] BusSlot addObject(
        char const* path, char const* interface, sd_bus_vtable const* members, void* object) const;
    /// Hears signals; nothing stands for any. Who sends them is the bus's word alone where the sender is a number, not
    /// a name.
    [[nodiscard]] BusSlot listen(
        char const* sender, char const* path, char const* interface, char const* member, Handler handler);
    /// Tells who owns a name from now on, each time that it changes; nobody: an empty text.
    [[nodiscard]] BusSlot observeOwner(std::string const& name, std::function<void(std::string const& owner)> observer);
    /// Tells from the main loop that the bus has gone.
    platform::Subscription observeEnd(platform::Task observer) { return end_.add(std::move(observer)); }

    /// Never runs out of patience.
    static constexpr std::chrono::microseconds forever { -1 };

    BusMessage methodCall(char const* destination, char const* path, char const* interface, char const* member) const;
    /// To the bus itself, with one text for a start.
    BusMessage callToBus(char const* member, std::string const& text) const;
    BusMessage signal(char const* path, char const* interface, char const* member) const;

    /// Sends a call, and hands its answer or its error over, unless what is returned is gone by then.
    [[nodiscard]] BusSlot call(
        BusMessage message, Handler answered, std::chrono::microseconds patience = std::chrono::seconds(25));
    /// Sends a call and waits for its answer: nothing for an error.
    BusMessage callAndWait(BusMessage message, std::chrono::microseconds patience) const;
    /// Sends what nobody answers.
    void send(BusMessage message);
    /// A signal of our own, with what sd_bus_message_append() takes.
    template <typename... Values>
    void emit(char const* path, char const* interface, char const* member, char const* signature, Values... values)
    {
        auto message = signal(path, interface, member);
        if (message)
            sd_bus_message_append(message.get(), signature, values...);
        send(std::move(message));
    }

private:
    BusSlot match(std::string const& rule, Handler handler);
    void process();
    void attend();
    void lost();

    DesktopRunLoop& loop_;
    BusConnection connection_;
    platform::Observers<> end_;
    /// What was sent may wait for room, and a call for its time to run out.
    OncePerTurn attend_;
    std::unique_ptr<DesktopRunLoop::Watch> traffic_;
    platform::Descriptor alarm_;
    std::unique_ptr<DesktopRunLoop::Watch> alarmWatch_;
    bool isProcessing_ = false;
};

/// A text as the bus takes it: what is not UTF-8 would have it hang up.
void append(sd_bus_message* message, std::string const& text);

/// Hands a call over to an object's own function.
template <typename Object, int (Object::*function)(sd_bus_message*)>
int onCall(sd_bus_message* call, void* object, sd_bus_error* /*error*/)
{
    return (static_cast<Object*>(object)->*function)(call);
}

/// Has an object's own function write the value of a property.
template <typename Object, void (Object::*function)(sd_bus_message*) const>
int onGet(sd_bus* /*bus*/, char const* /*path*/, char const* /*interface*/, char const* /*property*/,
    sd_bus_message* reply, void* object, sd_bus_error* /*error*/)
{
    (static_cast<Object*>(object)->*function)(reply);
    return 1;
}

/// Answers with a text of an object's.
template <typename Object, std::string (Object::*function)() const>
int onGetText(sd_bus* /*bus*/, char const* /*path*/, char const* /*interface*/, char const* /*property*/,
    sd_bus_message* reply, void* object, sd_bus_error* /*error*/)
{
    append(reply, (static_cast<Object*>(object)->*function)());
    return 1;
}
