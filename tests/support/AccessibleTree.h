// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QProcess>
#include <QTest>

#include <gtest/gtest.h>

/// Where assistive technologies find an object of a program: (so)
struct AccessiblePlace {
    QString service;
    QDBusObjectPath path;
};

/// What they are told of it.
struct Accessible {
    AccessiblePlace place;
    std::string role;
    std::string name;
    std::string description;
};

/// Starts an accessibility bus for the session, and reads other programs' windows over it as a screen reader does.
class AccessibleTree {
public:
    AccessibleTree()
    {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), QString::fromStdString(runtime_.path().string()));
        launcher_.setProcessEnvironment(environment);
        // The session's bus starts nothing, whatever the machine has.
        launcher_.start(QStringLiteral("/usr/libexec/at-spi-bus-launcher"), { "--launch-immediately" });
        QString address;
        EXPECT_TRUE(QTest::qWaitFor([this, &address] {
            address
                = call({ "org.a11y.Bus", QDBusObjectPath("/org/a11y/bus") }, "org.a11y.Bus", "GetAddress").toString();
            return !address.isEmpty();
        })) << "is at-spi2-core installed?";
        bus_ = QDBusConnection::connectToBus(address, QStringLiteral("accessibility"));
    }

    ~AccessibleTree()
    {
        QDBusConnection::disconnectFromBus(bus_.name());
        launcher_.terminate();
        launcher_.waitForFinished();
    }

    /// All that shows in the window of this title, itself first; empty as long as no program shows such a window.
    std::vector<Accessible> window(std::string const& title) const
    {
        std::vector<Accessible> found;
        for (auto const& program :
            children({ "org.a11y.atspi.Registry", QDBusObjectPath("/org/a11y/atspi/accessible/root") })) {
            for (auto const& window : children(program)) {
                if (property(window, "Name") == title)
                    addShowing(found, window);
            }
        }
        return found;
    }

    /// Does what the object is there for.
    void act(Accessible const& accessible) const { call(accessible.place, "org.a11y.atspi.Action", "DoAction", { 0 }); }

    /// Puts a text into a field in place of what is there.
    void write(Accessible const& accessible, char const* text) const
    {
        call(accessible.place, "org.a11y.atspi.EditableText", "SetTextContents", { text });
    }

private:
    QVariant call(AccessiblePlace const& place, char const* interface, char const* method,
        QVariantList const& arguments = {}) const
    {
        auto message = QDBusMessage::createMethodCall(
            place.service, place.path.path(), QLatin1String(interface), QLatin1String(method));
        message.setArguments(arguments);
        auto const reply = bus_.call(message);
        return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0) : QVariant();
    }

    std::string property(AccessiblePlace const& place, char const* name) const
    {
        auto const answer = call(place, "org.freedesktop.DBus.Properties", "Get", { object, name });
        return qvariant_cast<QDBusVariant>(answer).variant().toString().toStdString();
    }

    std::vector<AccessiblePlace> children(AccessiblePlace const& place) const
    {
        std::vector<AccessiblePlace> found;
        auto const list = call(place, object, "GetChildren").value<QDBusArgument>();
        if (list.currentType() != QDBusArgument::ArrayType)
            return found;
        for (list.beginArray(); !list.atEnd();) {
            auto& child = found.emplace_back();
            list.beginStructure();
            list >> child.service >> child.path;
            list.endStructure();
        }
        return found;
    }

    void addShowing(std::vector<Accessible>& found, AccessiblePlace const& place) const
    {
        // Of the protocol's states.
        constexpr unsigned showing = 1U << 25;
        if ((qdbus_cast<QList<uint>>(call(place, object, "GetState")).value(0) & showing) == 0)
            return;
        found.push_back({ place, call(place, object, "GetRoleName").toString().toStdString(), property(place, "Name"),
            property(place, "Description") });
        for (auto const& child : children(place))
            addShowing(found, child);
    }

    static constexpr char const* object = "org.a11y.atspi.Accessible";
    /// Of this tree's bus, beside those of other tests.
    TemporaryFolder runtime_;
    QProcess launcher_;
    QDBusConnection bus_ = QDBusConnection::sessionBus();
};
