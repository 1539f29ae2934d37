// SPDX-License-Identifier: MIT
#include "desktop/SingleInstance.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QTimer>

namespace {

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

bool SingleInstance::becomeFirst()
{
    if (!bus_.isConnected())
        return true;
    // The object stands before the name, so that whoever sees the name can call it.
    bus_.registerObject(pathOf(identifier_), this, QDBusConnection::ExportAllSlots);
    if (bus_.registerService(identifier_))
        return true;
    if (!bus_.interface()->isServiceRegistered(identifier_))
        return true;
    activateFirst();
    return false;
}

void SingleInstance::activateFirst()
{
    auto message
        = QDBusMessage::createMethodCall(identifier_, pathOf(identifier_), interface, QStringLiteral("Activate"));
    QVariantMap platformData;
    if (auto const token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN"); !token.isEmpty())
        platformData.insert(QStringLiteral("activation-token"), token);
    message << platformData;
    bus_.call(message);
}

void SingleInstance::Activate(QVariantMap const& platformData)
{
    if (auto const token = platformData.value(QStringLiteral("activation-token")).toString(); !token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
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
