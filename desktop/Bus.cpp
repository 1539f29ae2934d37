// SPDX-License-Identifier: MIT
#include "desktop/Bus.h"

#include "platform/Utf8.h"

#include <poll.h>
#include <string_view>
#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <utility>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// A bus normally needs a thousandth of this to accept a connection.
constexpr auto connectionTimeout = 5s;
// Busy programs must not keep our timers from running.
constexpr int messagesInATurn = 64;

// Zero or negative once the time is up.
int millisecondsUntil(Clock::time_point end)
{
    return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count());
}

bool isAccepted(sd_bus* bus)
{
    auto const end = Clock::now() + connectionTimeout;
    for (int left = millisecondsUntil(end); left > 0; left = millisecondsUntil(end)) {
        int const processed = sd_bus_process(bus, nullptr);
        if (processed < 0)
            return false;
        if (sd_bus_is_ready(bus) > 0)
            return true;
        if (processed > 0)
            continue;
        pollfd traffic { sd_bus_get_fd(bus), static_cast<short>(sd_bus_get_events(bus)), 0 };
        ::poll(&traffic, 1, left);
    }
    return false;
}

BusConnection connectToSession()
{
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0)
        return nullptr;
    BusConnection connection(bus);
    return isAccepted(bus) ? std::move(connection) : nullptr;
}

int handOver(sd_bus_message* message, void* handler, sd_bus_error* /*error*/)
{
    (*static_cast<Bus::Handler*>(handler))(message);
    return 0;
}

// Without its own handler, a match rule that the bus installs too late would end the connection.
int ignoreInstallation(sd_bus_message* /*answer*/, void* /*handler*/, sd_bus_error* /*error*/) { return 0; }

// The slot destroys the handler, but not while it is running.
BusSlot withHandler(sd_bus_slot* slot, std::unique_ptr<Bus::Handler> handler)
{
    sd_bus_slot_set_destroy_callback(slot, [](void* gone) { delete static_cast<Bus::Handler*>(gone); });
    [[maybe_unused]] auto* const kept = handler.release();
    return BusSlot(slot);
}

}

Bus::Bus(DesktopRunLoop& loop)
    : Bus(loop, connectToSession())
{
}

Bus::Bus(DesktopRunLoop& loop, BusConnection connection)
    : loop_(loop)
    , connection_(std::move(connection))
    , rescheduling_(loop, [this] { reschedule(); })
    , alarm_(connection_ ? ::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC) : -1)
{
    if (!connection_)
        return;
    traffic_ = loop_.watch(sd_bus_get_fd(connection_.get()), EPOLLIN, [this] { process(); });
    alarmWatch_ = loop_.watch(alarm_.get(), EPOLLIN, [this] { process(); });
    reschedule();
}

Bus::~Bus() = default;

char const* Bus::uniqueName() const
{
    char const* name = nullptr;
    return connection_ && sd_bus_get_unique_name(connection_.get(), &name) >= 0 ? name : "";
}

BusSlot Bus::addObject(char const* path, char const* interface, sd_bus_vtable const* members, void* object) const
{
    sd_bus_slot* slot = nullptr;
    if (connection_)
        sd_bus_add_object_vtable(connection_.get(), &slot, path, interface, members, object);
    return BusSlot(slot);
}

BusSlot Bus::listen(char const* sender, char const* path, char const* interface, char const* member, Handler handler)
{
    std::string rule = "type='signal'";
    for (auto const& [key, value] :
        { std::pair("sender", sender), { "path", path }, { "interface", interface }, { "member", member } }) {
        if (value)
            rule += std::string(",") + key + "='" + value + '\'';
    }
    return match(rule, std::move(handler));
}

BusSlot Bus::observeOwner(std::string const& name, std::function<void(std::string const&)> observer)
{
    auto const rule = "type='signal',sender='org.freedesktop.DBus',path='/org/freedesktop/DBus',"
                      "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='"
        + name + '\'';
    return match(rule, [observer = std::move(observer)](sd_bus_message* message) {
        // Anyone can send us such a signal, and sd-bus does not check that the sender owns the name that was asked for.
        bool const isBus = std::string_view(sd_bus_message_get_sender(message)) == "org.freedesktop.DBus";
        char const* owner = nullptr;
        if (isBus && sd_bus_message_read(message, "sss", nullptr, nullptr, &owner) > 0)
            observer(owner);
    });
}

BusSlot Bus::match(std::string const& rule, Handler handler)
{
    auto kept = std::make_unique<Handler>(std::move(handler));
    sd_bus_slot* slot = nullptr;
    if (!connection_
        || sd_bus_add_match_async(connection_.get(), &slot, rule.c_str(), handOver, ignoreInstallation, kept.get()) < 0)
        return nullptr;
    rescheduling_.request();
    return withHandler(slot, std::move(kept));
}

BusMessage Bus::methodCall(char const* destination, char const* path, char const* interface, char const* member) const
{
    sd_bus_message* message = nullptr;
    if (connection_)
        sd_bus_message_new_method_call(connection_.get(), &message, destination, path, interface, member);
    return BusMessage(message);
}

BusMessage Bus::callBus(char const* member, std::string const& text) const
{
    auto message = methodCall("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", member);
    if (message)
        append(message.get(), text);
    return message;
}

BusMessage Bus::signal(char const* path, char const* interface, char const* member) const
{
    sd_bus_message* message = nullptr;
    if (connection_)
        sd_bus_message_new_signal(connection_.get(), &message, path, interface, member);
    return BusMessage(message);
}

BusSlot Bus::call(BusMessage message, Handler answered, std::chrono::microseconds patience)
{
    auto kept = std::make_unique<Handler>(std::move(answered));
    sd_bus_slot* slot = nullptr;
    auto const limit = static_cast<std::uint64_t>(patience.count());
    if (!message || sd_bus_call_async(connection_.get(), &slot, message.get(), handOver, kept.get(), limit) < 0)
        return nullptr;
    rescheduling_.request();
    return withHandler(slot, std::move(kept));
}

BusMessage Bus::callAndWait(BusMessage message, std::chrono::microseconds patience) const
{
    sd_bus_message* reply = nullptr;
    if (message)
        sd_bus_call(connection_.get(), message.get(), static_cast<std::uint64_t>(patience.count()), nullptr, &reply);
    return BusMessage(reply);
}

void Bus::send(BusMessage message)
{
    if (!message)
        return;
    sd_bus_send(connection_.get(), message.get(), nullptr);
    rescheduling_.request();
}

void Bus::process()
{
    std::uint64_t expirations = 0;
    [[maybe_unused]] auto const size = ::read(alarm_.get(), &expirations, sizeof expirations);
    // A handler that runs the main loop itself would re-enter this function.
    if (std::exchange(isProcessing_, true))
        return;
    int processed = 1;
    for (int i = 0; i < messagesInATurn && processed > 0; ++i)
        processed = sd_bus_process(connection_.get(), nullptr);
    isProcessing_ = false;
    if (processed < 0)
        lost();
    else
        reschedule();
}

void Bus::reschedule()
{
    if (!connection_)
        return;
    traffic_->setEvents(static_cast<std::uint32_t>(sd_bus_get_events(connection_.get())));
    std::uint64_t due = UINT64_MAX;
    sd_bus_get_timeout(connection_.get(), &due);
    constexpr std::uint64_t second = 1'000'000;
    itimerspec alarm {};
    // A time of zero would disarm the timer.
    if (due != UINT64_MAX)
        alarm.it_value
            = { .tv_sec = static_cast<time_t>(due / second), .tv_nsec = static_cast<long>(due % second * 1000 + 1) };
    ::timerfd_settime(alarm_.get(), TFD_TIMER_ABSTIME, &alarm, nullptr);
}

void Bus::lost()
{
    traffic_.reset();
    alarmWatch_.reset();
    connection_.reset();
    end_.notify();
}

void append(sd_bus_message* message, std::string const& text)
{
    sd_bus_message_append_basic(message, 's', platform::wellFormedUtf8(text).c_str());
}
