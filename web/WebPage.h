// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WebView.h"

#include <QWebEnginePage>

#include <optional>

/// A page that may only be looked at and followed: it has no dialogs, no files, no windows and no messages of its own.
/// Tells the delegate of its loads.
class WebPage final : public QWebEnginePage {
    Q_OBJECT

public:
    WebPage(QWebEngineProfile& profile, platform::WebViewDelegate& delegate);

    /// Has the engine draw what is its own in a page, such as scroll bars, in the scheme "light" or "dark".
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
    /// The delegate was told of a load whose end it was not told yet.
    bool isReporting_ = false;
    /// The page of that load has begun to arrive.
    bool isCommitted_ = false;
    /// The last navigation that began was refused before its first request.
    bool isRefused_ = false;
};
