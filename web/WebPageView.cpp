// SPDX-License-Identifier: MIT
#include "web/WebPageView.h"

#include "windows/Text.h"

#include <QDialog>
#include <QEvent>
#include <QUrl>
#include <QWebEngineScript>

WebPageView::WebPageView(platform::WebViewDelegate& delegate, QWidget& place)
    : QWebEngineView(&place)
    , page_(profile_, delegate)
{
    setPage(&page_);
    setGround();
    setContextMenuPolicy(Qt::NoContextMenu);
    setAcceptDrops(false);
}

// The view must release the page before it is destroyed. The engine then answers every script that is still running.
WebPageView::~WebPageView()
{
    isClosing_ = true;
    setPage(nullptr);
}

void WebPageView::load(std::string const& url) { page_.load(QUrl(toQt(url))); }

void WebPageView::run(std::string const& script)
{
    page_.runJavaScript(toQt(script), QWebEngineScript::ApplicationWorld);
}

void WebPageView::evaluate(std::string const& script, platform::WebView::Completion completion)
{
    page_.runJavaScript(
        toQt(script), QWebEngineScript::ApplicationWorld, [this, goOn = std::move(completion)](QVariant const& result) {
            if (!isClosing_)
                goOn(result == QVariant(true));
        });
}

void WebPageView::changeEvent(QEvent* event)
{
    QWebEngineView::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        setGround();
}

// The engine opens its own dialog for colour inputs.
void WebPageView::childEvent(QChildEvent* event)
{
    QWebEngineView::childEvent(event);
    auto* const dialog = event->polished() ? qobject_cast<QDialog*>(event->child()) : nullptr;
    if (dialog)
        QMetaObject::invokeMethod(dialog, &QDialog::reject, Qt::QueuedConnection);
}

// Sets the background of pages that have none, and the scheme of scroll bars, so that nothing flashes or stays white on
// a dark desktop.
void WebPageView::setGround()
{
    auto const ground = palette().color(QPalette::Window);
    page_.setBackgroundColor(ground);
    page_.useScheme(qGray(ground.rgb()) < 128 ? QStringLiteral("dark") : QStringLiteral("light"));
}
