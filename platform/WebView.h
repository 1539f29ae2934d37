// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Property.h"

#include <functional>
#include <string>
#include <string_view>

namespace platform {

/// Why a page could not be loaded.
enum class LoadError {
    Unreachable,
    NameNotResolved,
    CertificateNotTrusted,
    /// The answer contained no page: it was cut off, or there were too many redirects.
    BadAnswer,
    /// The load ended before there was a page: it was cancelled, redirected to a forbidden place, or had no content.
    Stopped,
    /// The process that showed the page is gone.
    PageLost,
    EngineMissing,
    /// The engine belongs to another build of the program, because an upgrade has replaced it.
    EngineOfAnotherBuild,
    /// The engine cannot sandbox its pages.
    EngineNotIsolated,
};

enum class NavigationPolicy { Use, Ignore };

/// Follows the loads of a web view. An engine may report only the main frame.
class WebViewDelegate {
public:
    virtual void didStartProvisionalLoadForFrame() = 0;
    virtual void didFinishLoadForFrame() = 0;
    virtual void didFailProvisionalLoadWithError(LoadError error) = 0;
    /// A page that was already showing failed.
    virtual void didFailLoadWithError(LoadError error) = 0;
    /// Called for every navigation of every frame: loads, links, forms, scripts and redirects.
    virtual NavigationPolicy decidePolicyForNavigationAction(std::string_view url) = 0;

protected:
    ~WebViewDelegate() = default;
};

/// Loads and shows the pages of a web view. Pages can only be viewed and their links followed: they have no context
/// menu, selection, drag and drop, windows, dialogs or downloads. Main thread only.
class WebEngine {
public:
    virtual ~WebEngine() = default;

    /// Replaces a load in progress, which is not reported any further.
    virtual void load(std::string const& url) = 0;
    /// Whether any frame is still loading.
    virtual bool isLoading() const = 0;
    /// Runs a script in the main frame, isolated from the page's own scripts, after all earlier ones. Its value, which
    /// can be as large as the page, is discarded.
    virtual void run(std::string const& script) = 0;
    /// Runs a script in the same way, and later tells the completion whether its value is true; a script that fails
    /// counts as false. If the page is closed first, the completion is never called.
    virtual void evaluate(std::string const& script, std::function<void(bool isTrue)> completion) = 0;
};

/// A place for a web page. Without an engine it stays empty: nothing loads and no script runs.
class WebView {
public:
    using Completion = std::function<void(bool isTrue)>;

    Property<bool> hidden { false };
    WebViewDelegate* delegate = nullptr;
    WebEngine* engine = nullptr;

    void load(std::string const& url) const
    {
        if (engine)
            engine->load(url);
    }
    bool isLoading() const { return engine && engine->isLoading(); }
    void run(std::string const& script) const
    {
        if (engine)
            engine->run(script);
    }
    void evaluate(std::string const& script, Completion completion) const
    {
        if (engine)
            engine->evaluate(script, std::move(completion));
    }
};

}
