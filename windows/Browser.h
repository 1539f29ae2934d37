// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// Shows an address in the user's browser, where there is one. Main thread only.
void openInBrowser(std::string const& url);
