// SPDX-License-Identifier: MIT
#include "desktop/SingleInstance.h"

#include "desktop/ActivationToken.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QTimer>

namespace {

// A first instance that is just starting answers by then.
constexpr int patienceInMilliseconds = 3000;

QString const interface = QStringLiteral("org.freedesktop.Application");

QString pathOf(QString identifier)
{
    return QLatin1Char('/')
        + identifier.replace(QLatin1Char('.'), QLatin1Char('/')).replace(QLatin1Char('-'), QLatin1Char('_'));
}

}

SingleInstance::SingleInstance(QString identifier, QDBusConnection bus)
    : identifier_(std::move(identifier))
    , bus_(std::move(bus))
{
}

// Before the object goes: whoever is refused by then finds the name free.
SingleInstance::~SingleInstance()
{
    auto message = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ReleaseName"));
    message << identifier_;
    bus_.send(message);
}

SingleInstance::Outcome SingleInstance::start()
{
    if (!bus_.isConnected())
        return Outcome::IsFirst;
    // The object stands before the name, so that whoever sees the name can call it.
    bus_.registerObject(pathOf(identifier_), this, QDBusConnection::ExportAllSlots);
    if (becomeFirst())
        return Outcome::IsFirst;
    if (activateFirst())
        return Outcome::ActivatedFirst;
    // One that was ending has left its name by now.
    return becomeFirst() ? Outcome::IsFirst : Outcome::FirstIsSilent;
}

bool SingleInstance::becomeFirst()
{
    QDBusReply<QDBusConnectionInterface::RegisterServiceReply> const reply
        = bus_.interface()->registerService(identifier_);
    return !reply.isValid() || reply.value() == QDBusConnectionInterface::ServiceRegistered;
}

bool SingleInstance::activateFirst()
{
    auto message
        = QDBusMessage::createMethodCall(identifier_, pathOf(identifier_), interface, QStringLiteral("Activate"));
    QVariantMap platformData;
    if (auto const token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN"); !token.isEmpty())
        platformData.insert(QStringLiteral("activation-token"), token);
    message << platformData;
    return bus_.call(message, QDBus::Block, patienceInMilliseconds).type() == QDBusMessage::ReplyMessage;
}

void SingleInstance::Activate(QVariantMap const& platformData)
{
    dropActivationToken();
    keepActivationToken(platformData.value(QStringLiteral("activation-token")).toString());
    // The caller is answered first.
    QTimer::singleShot(0, this, [this] {
        if (activated_)
            activated_();
    });
}

void SingleInstance::Open(QStringList const& /*uris*/, QVariantMap const& platformData) { Activate(platformData); }

void SingleInstance::ActivateAction(
    QString const& /*action*/, QVariantList const& /*parameter*/, QVariantMap const& platformData)
{
    Activate(platformData);
}
