// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WebView.h"

#include <QObject>

#include <memory>
#include <optional>
#include <string>

class QWidget;
class WebPluginLoader;

/// Brings the web engine into a window while that is on the screen. The window comes first and the engine, which takes
/// its time, after it; closing the window ends the page with the process that showed it.
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
    /// The window has been drawn since it was opened.
    bool isDrawn_ = false;
    std::optional<std::string> pendingUrl_;
    std::unique_ptr<platform::WebEngine> page_;
};
