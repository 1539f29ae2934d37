// SPDX-License-Identifier: MIT
#include "windows/WebViewMirror.h"

#include "windows/WebPluginLoader.h"

#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <utility>

WebViewMirror::WebViewMirror(platform::WebView& model, QWidget& place, WebPluginLoader& loader)
    : model_(model)
    , place_(place)
    , loader_(loader)
{
    loader_.prepareWindow(*place_.window());
    place_.window()->installEventFilter(this);
    model_.engine = this;
}

WebViewMirror::~WebViewMirror() { model_.engine = nullptr; }

void WebViewMirror::load(std::string const& url)
{
    if (!place_.window()->isVisible())
        return;
    pendingUrl_ = url;
    if (isDrawn_)
        loadNow();
}

void WebViewMirror::loadNow()
{
    auto const url = std::exchange(pendingUrl_, std::nullopt);
    if (!url)
        return;
    if (!page_) {
        if (auto const error = loader_.load())
            return model_.delegate->didFailProvisionalLoadWithError(*error);
        page_ = loader_.plugin().makePage(model_, place_);
    }
    page_->load(*url);
}

bool WebViewMirror::isLoading() const { return page_ && page_->isLoading(); }

void WebViewMirror::run(std::string const& script)
{
    if (page_)
        page_->run(script);
}

void WebViewMirror::evaluate(std::string const& script, platform::WebView::Completion completion)
{
    if (page_)
        page_->evaluate(script, std::move(completion));
}

bool WebViewMirror::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == place_.window() && event->type() == QEvent::Paint && !isDrawn_) {
        isDrawn_ = true;
        // Loads after this paint event.
        QTimer::singleShot(0, this, [this] { loadNow(); });
    } else if (watched == place_.window() && event->type() == QEvent::Hide && !event->spontaneous()) {
        // A window that is hidden only to show it again is visible by then.
        QTimer::singleShot(0, this, [this] { endPageIfClosed(); });
    }
    return QObject::eventFilter(watched, event);
}

void WebViewMirror::endPageIfClosed()
{
    if (place_.window()->isVisible())
        return;
    isDrawn_ = false;
    pendingUrl_.reset();
    page_.reset();
}
