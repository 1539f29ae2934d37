// SPDX-License-Identifier: MIT
#pragma once

#include <string>

// A panel, a notification service or a later instance can pass us a token that lets one of our windows come to the
// front (xdg-activation-v1). Main thread only.

/// Keeps a token for the next window that comes to the front, in the environment, where the toolkit looks for it.
/// Ignores a token that is empty or longer than 1 KiB.
void keepActivationToken(std::string const& token);

/// Whether a token is kept.
bool hasActivationToken();

/// Removes the token from the environment. It is valid for only one window.
void dropActivationToken();

/// Removes the token from the environment and returns it, so that no child process inherits it.
std::string takeActivationToken();
