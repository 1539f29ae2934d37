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

/// Deletes sd-bus objects by dropping a reference.
struct BusRelease {
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};

using BusConnection = std::unique_ptr<sd_bus, BusRelease>;
using BusMessage = std::unique_ptr<sd_bus_message, BusRelease>;
/// Owns an object, an observation or a pending call, and ends it on destruction.
using BusSlot = std::unique_ptr<sd_bus_slot, BusRelease>;

/// A connection to a message bus, driven by the main loop. It may also be connected to no bus at all, and then nothing
/// ever answers. It never blocks unless stated, and handlers run from the main loop. Main thread only.
class Bus {
public:
    using Handler = std::function<void(sd_bus_message* message)>;

    /// Connects to the user's session bus. Gives up if the bus does not accept the connection within some seconds.
    explicit Bus(DesktopRunLoop& loop);
    /// Takes over a connection that has been started; null means no bus.
    Bus(DesktopRunLoop& loop, BusConnection connection);
    ~Bus();
    Bus(Bus const&) = delete;
    Bus& operator=(Bus const&) = delete;

    DesktopRunLoop& loop() const { return loop_; }
    bool isConnected() const { return connection_ != nullptr; }
    /// Our own name on the bus.
    char const* uniqueName() const;

    /// Dispatches calls to the members of an object.
    [[nodiscard]] BusSlot addObject(
        char const* path, char const* interface, sd_bus_vtable const* members, void* object) const;
    /// Calls the handler for matching signals; null matches anything. The sender can be trusted only if it is given as
    /// a unique name.
    [[nodiscard]] BusSlot listen(
        char const* sender, char const* path, char const* interface, char const* member, Handler handler);
    /// Calls the observer with the current owner of a name and on every change; the text is empty if there is no owner.
    [[nodiscard]] BusSlot observeOwner(std::string const& name, std::function<void(std::string const& owner)> observer);
    /// Calls the observer from the main loop when the bus connection is lost.
    platform::Subscription observeEnd(platform::Task observer) { return end_.add(std::move(observer)); }

    /// A timeout that never expires.
    static constexpr std::chrono::microseconds forever { -1 };

    BusMessage methodCall(char const* destination, char const* path, char const* interface, char const* member) const;
    /// Makes a call to the bus itself, with one text argument.
    BusMessage callBus(char const* member, std::string const& text) const;
    BusMessage signal(char const* path, char const* interface, char const* member) const;

    /// Sends a call and passes the reply or the error to the handler, unless the returned slot has been destroyed.
    [[nodiscard]] BusSlot call(
        BusMessage message, Handler answered, std::chrono::microseconds patience = std::chrono::seconds(25));
    /// Sends a call and blocks until the reply. Returns null on error.
    BusMessage callAndWait(BusMessage message, std::chrono::microseconds patience) const;
    /// Sends a message that expects no reply.
    void send(BusMessage message);
    /// Sends a signal of our own. Takes the same arguments as sd_bus_message_append().
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
    void reschedule();
    void lost();

    DesktopRunLoop& loop_;
    BusConnection connection_;
    platform::Observers<> end_;
    /// Updates what the loop waits for: room to send, and the timeouts of calls.
    OncePerTurn rescheduling_;
    std::unique_ptr<DesktopRunLoop::Watch> traffic_;
    platform::Descriptor alarm_;
    std::unique_ptr<DesktopRunLoop::Watch> alarmWatch_;
    bool isProcessing_ = false;
};

/// Appends a text as valid UTF-8; the bus would disconnect us otherwise.
void append(sd_bus_message* message, std::string const& text);

/// Dispatches a call to a member function of an object.
template <typename Object, int (Object::*function)(sd_bus_message*)>
int onCall(sd_bus_message* call, void* object, sd_bus_error* /*error*/)
{
    return (static_cast<Object*>(object)->*function)(call);
}

/// Uses a member function of an object to write the value of a property.
template <typename Object, void (Object::*function)(sd_bus_message*) const>
int onGet(sd_bus* /*bus*/, char const* /*path*/, char const* /*interface*/, char const* /*property*/,
    sd_bus_message* reply, void* object, sd_bus_error* /*error*/)
{
    (static_cast<Object*>(object)->*function)(reply);
    return 1;
}

/// Replies with a text that a member function returns.
template <typename Object, std::string (Object::*function)() const>
int onGetText(sd_bus* /*bus*/, char const* /*path*/, char const* /*interface*/, char const* /*property*/,
    sd_bus_message* reply, void* object, sd_bus_error* /*error*/)
{
    append(reply, (static_cast<Object*>(object)->*function)());
    return 1;
}
