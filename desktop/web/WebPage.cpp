// SPDX-License-Identifier: MIT
#include "desktop/web/WebPage.h"

#include <QFontDatabase>
#include <QWebEngineLoadingInfo>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>
#include <QWebEngineSettings>

#include <utility>

namespace {

// The engine's numbers.
constexpr int nameNotResolved = -105;
constexpr int nameResolutionFailed = -137;

// A style sheet of its own, that the page's scripts do not come across.
constexpr auto untouchable = R"(
    const sheet = new CSSStyleSheet();
    sheet.replaceSync('* { user-select: none !important; -webkit-user-drag: none !important; }');
    document.adoptedStyleSheets = [...document.adoptedStyleSheets, sheet];
)";

platform::LoadError toLoadError(QWebEngineLoadingInfo const& info)
{
    switch (info.errorDomain()) {
    case QWebEngineLoadingInfo::CertificateErrorDomain:
        return platform::LoadError::CertificateNotTrusted;
    case QWebEngineLoadingInfo::DnsErrorDomain:
        return platform::LoadError::NameNotResolved;
    case QWebEngineLoadingInfo::ConnectionErrorDomain:
        return info.errorCode() == nameNotResolved || info.errorCode() == nameResolutionFailed
            ? platform::LoadError::NameNotResolved
            : platform::LoadError::Unreachable;
    default:
        return platform::LoadError::BadAnswer;
    }
}

}

WebPage::WebPage(QWebEngineProfile& profile, platform::WebViewDelegate& delegate)
    : QWebEnginePage(&profile)
    , delegate_(delegate)
{
    restrict();
    QObject::connect(this, &QWebEnginePage::loadingChanged, this, &WebPage::followLoading);
    QObject::connect(this, &QWebEnginePage::renderProcessTerminated, this, [this] {
        isReporting_ = false;
        delegate_.didFailLoadWithError(platform::LoadError::PageLost);
    });
}

void WebPage::restrict()
{
    auto* const own = settings();
    own->setUnknownUrlSchemePolicy(QWebEngineSettings::DisallowUnknownUrlSchemes);
    for (auto const attribute : { QWebEngineSettings::AutoLoadIconsForPage, QWebEngineSettings::ErrorPageEnabled,
             QWebEngineSettings::JavascriptCanOpenWindows, QWebEngineSettings::PdfViewerEnabled })
        own->setAttribute(attribute, false);
    auto const family = QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
    for (auto const font : { QWebEngineSettings::StandardFont, QWebEngineSettings::SansSerifFont })
        own->setFontFamily(font, family);

    QWebEngineScript script;
    script.setSourceCode(QString::fromLatin1(untouchable));
    script.setInjectionPoint(QWebEngineScript::DocumentCreation);
    script.setWorldId(QWebEngineScript::ApplicationWorld);
    script.setRunsOnSubFrames(true);
    scripts().insert(script);
}

bool WebPage::acceptNavigationRequest(QUrl const& url, NavigationType type, bool isMainFrame)
{
    bool const accepted
        = delegate_.decidePolicyForNavigationAction(url.toEncoded().toStdString()) == platform::NavigationPolicy::Use;
    if (isMainFrame && type != NavigationTypeRedirect)
        isRefused_ = !accepted;
    return accepted;
}

// The engine starts and stops a load even for what it was refused. A load that takes another one's place reports its
// start alone, or not even that.
void WebPage::followLoading(QWebEngineLoadingInfo const& info)
{
    switch (info.status()) {
    case QWebEngineLoadingInfo::LoadStartedStatus:
        if (isRefused_)
            return;
        isReporting_ = true;
        return delegate_.didStartProvisionalLoadForFrame();
    case QWebEngineLoadingInfo::LoadSucceededStatus:
        return reportEnd({});
    case QWebEngineLoadingInfo::LoadFailedStatus:
        // The status of the answer is the page's own affair.
        if (info.errorDomain() == QWebEngineLoadingInfo::HttpStatusCodeDomain)
            return reportEnd({});
        return reportEnd(toLoadError(info));
    case QWebEngineLoadingInfo::LoadStoppedStatus:
        return reportEnd(platform::LoadError::Stopped);
    }
}

void WebPage::reportEnd(std::optional<platform::LoadError> error)
{
    if (!std::exchange(isReporting_, false))
        return;
    if (error)
        delegate_.didFailProvisionalLoadWithError(*error);
    else
        delegate_.didFinishLoadForFrame();
}

QStringList WebPage::chooseFiles(
    FileSelectionMode /*mode*/, QStringList const& /*oldFiles*/, QStringList const& /*types*/)
{
    return {};
}

void WebPage::javaScriptAlert(QUrl const& /*origin*/, QString const& /*message*/) { }

bool WebPage::javaScriptConfirm(QUrl const& /*origin*/, QString const& /*message*/) { return false; }

bool WebPage::javaScriptPrompt(
    QUrl const& /*origin*/, QString const& /*message*/, QString const& /*defaultText*/, QString* /*text*/)
{
    return false;
}

void WebPage::javaScriptConsoleMessage(
    JavaScriptConsoleMessageLevel /*level*/, QString const& /*message*/, int /*line*/, QString const& /*source*/)
{
}
