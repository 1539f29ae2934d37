// SPDX-License-Identifier: MIT
#pragma once

#include "web/WebPage.h"

#include <QWebEngineProfile>
#include <QWebEngineView>

/// A page in a widget, with its own profile, which stores nothing on disk.
class WebPageView final : public QWebEngineView, public platform::WebEngine {
    Q_OBJECT

public:
    WebPageView(platform::WebViewDelegate& delegate, QWidget& place);
    ~WebPageView() override;

    void load(std::string const& url) override;
    bool isLoading() const override { return page_.isLoading(); }
    void run(std::string const& script) override;
    void evaluate(std::string const& script, platform::WebView::Completion completion) override;

private:
    void changeEvent(QEvent* event) override;
    void childEvent(QChildEvent* event) override;
    void setGround();

    bool isClosing_ = false;
    QWebEngineProfile profile_;
    WebPage page_;
};
