// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WebView.h"
#include "windows/WebPlugin.h"

#include <filesystem>
#include <optional>

/// Finds the web engine when it is first needed, and not before: it would double the program's size.
class WebPluginLoader final {
public:
    /// The folder of the libraries.
    explicit WebPluginLoader(std::filesystem::path folder)
        : folder_(std::move(folder))
    {
    }

    /// Makes a window ready for the engine before it is first shown.
    void prepareWindow(QWidget& window) const;

    /// Loads the engine unless it is loaded already; tells what is in the way, and tries again when asked again.
    std::optional<platform::LoadError> load();
    /// The engine, once load() had nothing to tell.
    WebPlugin& plugin() { return *plugin_; }

private:
    std::filesystem::path folder_;
    WebPlugin* plugin_ = nullptr;
};
