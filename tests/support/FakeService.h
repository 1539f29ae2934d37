// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

/// A service on the session bus, on a connection of its own, that writes down what it is asked for.
class FakeService : public QDBusVirtualObject {
public:
    using Answer = std::function<QVariantList(QDBusMessage const&)>;

    /// One without an answer hangs.
    FakeService(char const* name, char const* path, Answer answer)
        : path_(QLatin1String(path))
        , answer_(std::move(answer))
    {
        bus.registerVirtualObject(path_, this);
        EXPECT_TRUE(bus.registerService(QLatin1String(name)));
    }
    ~FakeService() override { QDBusConnection::disconnectFromBus(bus.name()); }

    bool handleMessage(QDBusMessage const& message, QDBusConnection const& connection) override
    {
        calls.push_back(message);
        return !answer_ || connection.send(message.createReply(answer_(message)));
    }
    QString introspect(QString const& /*path*/) const override { return {}; }

    /// Returns once the bus has the signal.
    void notify(char const* interface, char const* member, QVariantList const& arguments)
    {
        auto signal = QDBusMessage::createSignal(path_, QLatin1String(interface), QLatin1String(member));
        signal.setArguments(arguments);
        bus.send(signal);
        bus.call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetId"));
    }

    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("fake service"));
    std::vector<QDBusMessage> calls;

private:
    QString path_;
    Answer answer_;
};
