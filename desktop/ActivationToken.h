// SPDX-License-Identifier: MIT
#pragma once

#include <string>

// A panel, a notification service or a later instance can hand over a token with which a window of ours may come to the
// front (xdg-activation-v1). Main thread only.

/// Keeps a token for the next window that comes to the front; the toolkit looks for it in the environment. A token that
/// is empty or longer than 1 KiB is ignored.
void keepActivationToken(std::string const& token);

/// Whether a token is kept.
bool hasActivationToken();

/// Takes the token out of the environment. It is good for one window.
void dropActivationToken();

/// Takes the token out of the environment and returns it, so that no child process inherits it.
std::string takeActivationToken();
