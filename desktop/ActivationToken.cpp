// SPDX-License-Identifier: MIT
#include "desktop/ActivationToken.h"

#include "desktop/Environment.h"

#include <cstdlib>

namespace {

constexpr char const* variable = "XDG_ACTIVATION_TOKEN";
// In bytes. Compositors' tokens have a few dozen.
constexpr std::size_t maximumLength = 1024;

}

void keepActivationToken(std::string const& token)
{
    if (!token.empty() && token.size() <= maximumLength)
        ::setenv(variable, token.c_str(), 1);
}

bool hasActivationToken() { return !environmentText(variable).empty(); }

void dropActivationToken() { ::unsetenv(variable); }

std::string takeActivationToken()
{
    auto token = environmentText(variable);
    dropActivationToken();
    return token;
}
