// SPDX-License-Identifier: MIT
#pragma once

#include "platform/ComboBox.h"
#include "platform/Controls.h"
#include "platform/RunLoop.h"
#include "windows/WebViewMirror.h"

#include <QWidget>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

class QComboBox;

namespace platform {
class Bundle;
}

/// Prevents accidental picks in a closed pop-up: the mouse wheel scrolls the window instead, and keys that move through
/// the list open it first.
class PickGuard final : public QObject {
    Q_OBJECT

    bool eventFilter(QObject* watched, QEvent* event) override;
};

/// Binds models of controls to a window's widgets, which are found by the outlets' names. A widget shows what its model
/// holds and passes on the user's actions. Throws std::logic_error, which the tests detect, if the layout lacks a
/// widget.
class Binder {
public:
    /// The window, the bundle with the texts and the loop with the clock must outlive the binder.
    Binder(QWidget& window, platform::Bundle const& bundle, platform::RunLoop const& runLoop);

    void bind(char const* outlet, platform::Button& model);
    void bind(char const* outlet, platform::CheckBox& model);
    void bind(char const* outlet, platform::ComboBox& model);
    void bind(char const* outlet, platform::PopUpButton& model);
    void bindLabel(char const* outlet, platform::TextField& model);
    /// Binds a label that is visible only while it has a text.
    void bindRemark(char const* outlet, platform::TextField& model);
    /// Binds a label for a figure, which is cut off with an ellipsis rather than widening the window. The tool tip
    /// shows it in full.
    void bindFigure(char const* outlet, platform::TextField& model);
    void bindInput(char const* outlet, platform::TextField& model);
    void bind(char const* outlet, platform::LevelIndicator& model);
    void bind(char const* outlet, platform::ProgressIndicator& model);
    void bind(char const* outlet, platform::DatePicker& model);
    void bind(char const* outlet, platform::WebView& model, WebPluginLoader& loader);

private:
    template <typename Child> Child& child(char const* outlet)
    {
        if (auto* const found = window_.findChild<Child*>(QLatin1String(outlet)))
            return *found;
        throw std::logic_error(std::string("the layout has no such outlet: ") + outlet);
    }

    QComboBox& comboBox(char const* outlet);
    void keep(platform::Subscription subscription) { subscriptions_.push_back(std::move(subscription)); }
    /// Replaces the text keys that layouts contain with texts.
    void localizeTexts();
    QString localized(QString const& key) const;
    void mirrorHidden(QWidget& widget, platform::Property<bool>& hidden);
    void mirrorOpacity(QWidget& widget, platform::Opacity& opacity);

    QWidget& window_;
    platform::Bundle const& bundle_;
    platform::RunLoop const& runLoop_;
    PickGuard pickGuard_;
    std::vector<std::unique_ptr<WebViewMirror>> webViews_;
    std::vector<platform::Subscription> subscriptions_;
};
