// SPDX-License-Identifier: MIT
#pragma once

#include "windows/WebPluginId.h"

#include <QtPlugin>

#include <memory>

class QWidget;

namespace platform {
class WebEngine;
class WebView;
}

/// The web engine, in a separate library that is loaded when a page is first shown.
class WebPlugin {
public:
    virtual ~WebPlugin() = default;

    /// Fills a widget with a new page, which ends when the returned object is destroyed. The view's delegate follows
    /// its loads.
    virtual std::unique_ptr<platform::WebEngine> makePage(platform::WebView& model, QWidget& place) = 0;
};

Q_DECLARE_INTERFACE(WebPlugin, USAGE_METER_WEB_PLUGIN_ID)
