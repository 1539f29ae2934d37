// SPDX-License-Identifier: MIT
#include "web/WebPage.h"

#include <QAuthenticator>
#include <QFontDatabase>
#include <QWebEngineLoadingInfo>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>
#include <QWebEngineSettings>

#include <utility>

namespace {

// The engine's error codes.
constexpr int nameNotResolved = -105;
constexpr int nameResolutionFailed = -137;

// Uses an adopted style sheet, because a style element would become the page's first one. The events are stopped before
// the page's own handlers see them, including its request to confirm leaving.
constexpr auto untouchable = R"(
    const sheet = new CSSStyleSheet();
    sheet.replaceSync('* { user-select: none !important; -webkit-user-drag: none !important; }');
    document.adoptedStyleSheets = [...document.adoptedStyleSheets, sheet];
    for (const kind of ['selectstart', 'dragstart'])
        addEventListener(kind, event => event.preventDefault(), true);
    addEventListener('beforeunload', event => event.stopImmediatePropagation(), true);
)";

// The user is not asked for a name and a password. Without an answer the engine would try again and again.
void refuse(QAuthenticator* authenticator) { *authenticator = QAuthenticator(); }

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
    QObject::connect(this, &QWebEnginePage::urlChanged, this, [this] { isCommitted_ = true; });
    QObject::connect(this, &QWebEnginePage::authenticationRequired, this,
        [](QUrl const&, QAuthenticator* authenticator) { refuse(authenticator); });
    QObject::connect(this, &QWebEnginePage::proxyAuthenticationRequired, this,
        [](QUrl const&, QAuthenticator* authenticator, QString const&) { refuse(authenticator); });
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

void WebPage::useScheme(QString const& scheme)
{
    QWebEngineScript script;
    script.setName(QStringLiteral("scheme"));
    script.setSourceCode(QStringLiteral("document.documentElement.style.colorScheme = '%1';").arg(scheme));
    script.setInjectionPoint(QWebEngineScript::DocumentReady);
    script.setWorldId(QWebEngineScript::ApplicationWorld);
    for (auto const& earlier : scripts().find(script.name()))
        scripts().remove(earlier);
    scripts().insert(script);
    runJavaScript(script.sourceCode(), QWebEngineScript::ApplicationWorld);
}

bool WebPage::acceptNavigationRequest(QUrl const& url, NavigationType type, bool isMainFrame)
{
    bool const accepted
        = delegate_.decidePolicyForNavigationAction(url.toEncoded().toStdString()) == platform::NavigationPolicy::Use;
    // A server's redirect continues the current load, but after the page has arrived, a redirect is the page's own
    // attempt to leave.
    bool const isServersRedirect = type == NavigationTypeRedirect && isReporting_ && !isCommitted_;
    if (isMainFrame && !isServersRedirect)
        isRefused_ = !accepted;
    return accepted;
}

// The engine starts and stops a load even for a refused navigation. A load that replaces another one reports only its
// start, or not even that.
void WebPage::followLoading(QWebEngineLoadingInfo const& info)
{
    switch (info.status()) {
    case QWebEngineLoadingInfo::LoadStartedStatus:
        if (isRefused_)
            return;
        isReporting_ = true;
        isCommitted_ = false;
        return delegate_.didStartProvisionalLoadForFrame();
    case QWebEngineLoadingInfo::LoadSucceededStatus:
        return reportEnd({});
    case QWebEngineLoadingInfo::LoadFailedStatus:
        // An HTTP error status still comes with a page.
        if (info.errorDomain() == QWebEngineLoadingInfo::HttpStatusCodeDomain)
            return reportEnd({});
        return reportEnd(toLoadError(info));
    case QWebEngineLoadingInfo::LoadStoppedStatus:
        // A page that tries to leave while loading is kept as far as it has arrived.
        return reportEnd(isRefused_ ? std::nullopt : std::optional(platform::LoadError::Stopped));
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
