// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WebView.h"

#include <QObject>

#include <memory>
#include <optional>
#include <string>

class QWidget;
class WebPluginLoader;

/// Runs the web engine in a window while that is visible. The window is shown before the engine, which is slow to load.
/// Closing the window ends the page and its process.
class WebViewMirror final : public QObject, public platform::WebEngine {
    Q_OBJECT

public:
    WebViewMirror(platform::WebView& model, QWidget& place, WebPluginLoader& loader);
    ~WebViewMirror() override;

    /// Does nothing while the window is closed.
    void load(std::string const& url) override;
    bool isLoading() const override;
    void run(std::string const& script) override;
    void evaluate(std::string const& script, platform::WebView::Completion completion) override;

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void loadNow();
    void endPageIfClosed();

    platform::WebView& model_;
    QWidget& place_;
    WebPluginLoader& loader_;
    /// Whether the window has been drawn since it was opened.
    bool isDrawn_ = false;
    std::optional<std::string> pendingUrl_;
    std::unique_ptr<platform::WebEngine> page_;
};
