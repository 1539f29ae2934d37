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
    /// There was an answer, but no page in it: cut off, or one redirect after the other.
    BadAnswer,
    /// Ended before there was a page: cancelled, led to where it may not go, or answered with no content.
    Stopped,
    /// The process that showed the page is gone.
    PageLost,
    EngineMissing,
    /// The engine is there, but belongs to another build of the program: an upgrade has replaced it.
    EngineOfAnotherBuild,
    /// The engine is there, but may not shut its pages off from the rest of the computer.
    EngineNotIsolated,
};

enum class NavigationPolicy { Use, Ignore };

/// Follows the loads of a web view. An engine may report the main frame alone.
class WebViewDelegate {
public:
    virtual void didStartProvisionalLoadForFrame() = 0;
    virtual void didFinishLoadForFrame() = 0;
    virtual void didFailProvisionalLoadWithError(LoadError error) = 0;
    /// A page that was there already failed.
    virtual void didFailLoadWithError(LoadError error) = 0;
    /// Asked for every navigation of every frame: loads, links, forms, scripts and redirects.
    virtual NavigationPolicy decidePolicyForNavigationAction(std::string_view url) = 0;

protected:
    ~WebViewDelegate() = default;
};

/// What loads and shows the pages of a web view. Its pages can be looked at and followed, and that is all: no context
/// menu, no selection, nothing dragged in or out, no windows, dialogs or downloads of their own. Main thread only.
class WebEngine {
public:
    virtual ~WebEngine() = default;

    /// Takes the place of a load under way, of which nothing more is reported.
    virtual void load(std::string const& url) = 0;
    /// Whether any frame is not finished yet.
    virtual bool isLoading() const = 0;
    /// Runs a script in the main frame, apart from the page's own scripts, after all that were given before it. Its
    /// value, which can be as large as the page, is discarded.
    virtual void run(std::string const& script) = 0;
    /// Runs a script in the same way, and later tells the completion whether its value is true. The value of a script
    /// that fails is not. When the page goes first, the completion is never called.
    virtual void evaluate(std::string const& script, std::function<void(bool isTrue)> completion) = 0;
};

/// A place for a page of the web. Without an engine it stays empty: nothing loads and no script runs.
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
