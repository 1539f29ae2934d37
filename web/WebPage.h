// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WebView.h"

#include <QWebEnginePage>

#include <optional>

/// A page that can only be viewed, with its links followed. It cannot open dialogs, files or windows, or print console
/// messages. Reports its loads to the delegate.
class WebPage final : public QWebEnginePage {
    Q_OBJECT

public:
    WebPage(QWebEngineProfile& profile, platform::WebViewDelegate& delegate);

    /// Sets the scheme, "light" or "dark", for what the engine itself draws in a page, such as scroll bars.
    void useScheme(QString const& scheme);

protected:
    bool acceptNavigationRequest(QUrl const& url, NavigationType type, bool isMainFrame) override;
    QStringList chooseFiles(FileSelectionMode mode, QStringList const& oldFiles, QStringList const& types) override;
    void javaScriptAlert(QUrl const& origin, QString const& message) override;
    bool javaScriptConfirm(QUrl const& origin, QString const& message) override;
    bool javaScriptPrompt(
        QUrl const& origin, QString const& message, QString const& defaultText, QString* text) override;
    void javaScriptConsoleMessage(
        JavaScriptConsoleMessageLevel level, QString const& message, int line, QString const& source) override;

private:
    void restrict();
    void followLoading(QWebEngineLoadingInfo const& info);
    void reportEnd(std::optional<platform::LoadError> error);

    platform::WebViewDelegate& delegate_;
    /// Whether a load has been reported to the delegate but its end has not.
    bool isReporting_ = false;
    /// Whether that load's page has begun to arrive.
    bool isCommitted_ = false;
    /// Whether the last navigation was refused before its first request.
    bool isRefused_ = false;
};
