// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WebView.h"
#include "windows/WebPlugin.h"

#include <filesystem>
#include <optional>

/// Loads the web engine when it is first needed, since it would double the program's size.
class WebPluginLoader final {
public:
    /// Takes the folder of the libraries.
    explicit WebPluginLoader(std::filesystem::path folder)
        : folder_(std::move(folder))
    {
    }

    /// Prepares a window for the engine. Call it before the window is first shown.
    void prepareWindow(QWidget& window) const;

    /// Loads the engine if necessary. Returns the error on failure; a later call tries again.
    std::optional<platform::LoadError> load();
    /// The engine, once load() has succeeded.
    WebPlugin& plugin() { return *plugin_; }

private:
    std::filesystem::path folder_;
    WebPlugin* plugin_ = nullptr;
};
