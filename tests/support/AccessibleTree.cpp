// SPDX-License-Identifier: MIT
#include "tests/support/AccessibleTree.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusReply>
#include <QTest>

#include <gtest/gtest.h>

namespace {

constexpr char const* object = "org.a11y.atspi.Accessible";
constexpr char const* action = "org.a11y.atspi.Action";
constexpr QLatin1String connection("accessibility");
// The bits of the protocol's states.
constexpr int focusable = 11;
constexpr int focused = 12;
constexpr int showing = 25;

// The session's bus starts nothing, whatever the machine has.
QDBusConnection startBus(QProcess& launcher, std::filesystem::path const& runtime)
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), QString::fromStdString(runtime.string()));
    launcher.setProcessEnvironment(environment);
    launcher.start(QStringLiteral("/usr/libexec/at-spi-bus-launcher"), { "--launch-immediately" });
    auto const* const services = QDBusConnection::sessionBus().interface();
    auto const isUp = [services] { return services->isServiceRegistered(QStringLiteral("org.a11y.Bus")).value(); };
    EXPECT_TRUE(QTest::qWaitFor(isUp)) << "is at-spi2-core installed?";
    auto const address
        = QDBusConnection::sessionBus().call(QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"),
            QStringLiteral("/org/a11y/bus"), QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress")));
    return QDBusConnection::connectToBus(QDBusReply<QString>(address), connection);
}

}

QDBusArgument& operator<<(QDBusArgument& argument, AccessiblePlace const& place)
{
    argument.beginStructure();
    argument << place.service << place.path;
    argument.endStructure();
    return argument;
}

QDBusArgument const& operator>>(QDBusArgument const& argument, AccessiblePlace& place)
{
    argument.beginStructure();
    argument >> place.service >> place.path;
    argument.endStructure();
    return argument;
}

AccessibleTree::AccessibleTree()
    : bus_(startBus(launcher_, runtime_.path()))
{
    qDBusRegisterMetaType<AccessiblePlace>();
}

AccessibleTree::~AccessibleTree()
{
    QDBusConnection::disconnectFromBus(connection);
    launcher_.terminate();
    launcher_.waitForFinished();
}

std::vector<Accessible> AccessibleTree::window(std::string const& title) const
{
    std::vector<Accessible> found;
    AccessiblePlace const root { QStringLiteral("org.a11y.atspi.Registry"),
        QDBusObjectPath(QStringLiteral("/org/a11y/atspi/accessible/root")) };
    for (auto const& program : children(root)) {
        for (auto const& window : children(program)) {
            if (read(window).name == title)
                addShowing(found, window);
        }
    }
    return found;
}

double AccessibleTree::number(Accessible const& accessible, char const* name) const
{
    return property(accessible.place, "org.a11y.atspi.Value", name).toDouble();
}

void AccessibleTree::act(Accessible const& accessible) const { call(accessible.place, action, "DoAction", { 0 }); }

void AccessibleTree::write(Accessible const& accessible, std::string const& text) const
{
    call(accessible.place, "org.a11y.atspi.EditableText", "SetTextContents", { QString::fromStdString(text) });
}

QVariant AccessibleTree::call(
    AccessiblePlace const& place, char const* interface, char const* method, QVariantList const& arguments) const
{
    auto message = QDBusMessage::createMethodCall(
        place.service, place.path.path(), QLatin1String(interface), QLatin1String(method));
    message.setArguments(arguments);
    auto const reply = bus_.call(message);
    return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0) : QVariant();
}

QVariant AccessibleTree::property(AccessiblePlace const& place, char const* interface, char const* name) const
{
    auto const answer = call(place, "org.freedesktop.DBus.Properties", "Get", { interface, name });
    return qvariant_cast<QDBusVariant>(answer).variant();
}

std::vector<AccessiblePlace> AccessibleTree::children(AccessiblePlace const& place) const
{
    auto const list = qdbus_cast<QList<AccessiblePlace>>(call(place, object, "GetChildren"));
    return { list.begin(), list.end() };
}

Accessible AccessibleTree::read(AccessiblePlace const& place) const
{
    auto const states = qdbus_cast<QList<uint>>(call(place, object, "GetState"));
    auto const is = [bits = states.value(0)](int state) { return (bits >> state & 1U) != 0; };
    return { place, call(place, object, "GetRoleName").toString().toStdString(),
        property(place, object, "Name").toString().toStdString(),
        property(place, object, "Description").toString().toStdString(), is(showing), is(focusable), is(focused),
        call(place, action, "GetKeyBinding", { 0 }).toString().toStdString() };
}

void AccessibleTree::addShowing(std::vector<Accessible>& found, AccessiblePlace const& place) const
{
    auto const accessible = read(place);
    if (!accessible.isShowing)
        return;
    found.push_back(accessible);
    for (auto const& child : children(place))
        addShowing(found, child);
}
