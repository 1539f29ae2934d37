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

/// Keeps a closed pop-up from picking what the user only passes over: the mouse wheel goes on to the window, and the
/// keys that move through the list open it first.
class PickGuard final : public QObject {
    Q_OBJECT

    bool eventFilter(QObject* watched, QEvent* event) override;
};

/// Ties the models of controls to a window's widgets, found by the outlets' names: a widget shows what its model holds,
/// and passes on what the user does. A layout without such a widget throws std::logic_error, which the tests see.
class Binder {
public:
    /// The window, its binder's texts and the clock of its fades outlive the binder.
    Binder(QWidget& window, platform::Bundle const& bundle, platform::RunLoop const& runLoop);

    void bind(char const* outlet, platform::Button& model);
    void bind(char const* outlet, platform::CheckBox& model);
    void bind(char const* outlet, platform::ComboBox& model);
    void bind(char const* outlet, platform::PopUpButton& model);
    /// A text to read.
    void bindLabel(char const* outlet, platform::TextField& model);
    /// A label for a remark, which shows only while there is something to remark.
    void bindRemark(char const* outlet, platform::TextField& model);
    /// A label for a figure, which it cuts off with an ellipsis rather than widen the window. The tool tip has it
    /// whole.
    void bindFigure(char const* outlet, platform::TextField& model);
    /// A text to type into.
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
    /// Layouts hold the keys of their texts.
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
