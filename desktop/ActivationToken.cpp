// SPDX-License-Identifier: MIT
#include "desktop/ActivationToken.h"

#include <QByteArray>

namespace {

constexpr char const* variable = "XDG_ACTIVATION_TOKEN";
// In bytes. Compositors make tokens of some dozens.
constexpr qsizetype maximumLength = 1024;

}

void keepActivationToken(QString const& token)
{
    auto const bytes = token.toUtf8();
    if (!bytes.isEmpty() && bytes.size() <= maximumLength)
        qputenv(variable, bytes);
}

bool hasActivationToken() { return qEnvironmentVariableIsSet(variable); }

void dropActivationToken() { qunsetenv(variable); }

QString takeActivationToken()
{
    auto token = qEnvironmentVariable(variable);
    dropActivationToken();
    return token;
}
