// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Controls.h"
#include "platform/WebView.h"
#include "platform/Window.h"

/// The controls of the detailed usage window. A desktop names its widgets after the outlets.
struct DetailedUsageLayout {
    DetailedUsageLayout()
    {
        usageWebView.hidden.set(true);
        usageMonthPicker.hidden.set(true);
        exitFullScreen.hidden.set(true);
    }

    platform::Window window;
    platform::WebView usageWebView;
    platform::ProgressIndicator progressIndicator;
    platform::TextField loadingText;
    platform::Button exitFullScreen;
    platform::DatePicker usageMonthPicker;
};
