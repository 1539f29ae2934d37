// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// Shows an address in the user's browser; false where that cannot be started. Main thread only.
bool openInBrowser(std::string const& url);
