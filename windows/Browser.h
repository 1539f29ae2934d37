// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// Opens a URL in the user's browser. Returns false if the browser cannot be started. Main thread only.
bool openInBrowser(std::string const& url);
