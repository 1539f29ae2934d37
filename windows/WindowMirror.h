// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Window.h"
#include "windows/Binder.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

class AlertBox;
class QDialog;

/// Shows a window's model as a real window. Its widgets are built when it is first shown.
class WindowMirror final : public QObject {
    Q_OBJECT

public:
    /// Sets up the widgets of a new window.
    using Build = std::function<void(QDialog& window)>;
    /// Binds the models to the widgets.
    using Bind = std::function<void(Binder& binder)>;

    /// A sheet passes the window that it is attached to as its parent.
    WindowMirror(platform::Window& model, platform::Bundle const& bundle, platform::RunLoop const& runLoop, Build build,
        Bind bind, WindowMirror* parent = nullptr);
    ~WindowMirror() override;

    /// Returns the real window, building it if necessary, for settings that only a desktop has.
    QDialog& widget();

    /// Reports the window's position, or its last one if it is closed, to the model.
    void notePlace();

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void buildWidget();
    void setShown(bool shown);
    void putInPlace();
    QSize roomOnScreen() const;
    void makeScrollable();
    void growToFit();
    void focusFirstField();
    bool isActive() const;
    bool staysWhereItIs() const;
    void bringToFront();
    void reshow();
    void setBackground(std::optional<platform::Color> const& color);
    void showAlert();

    platform::Window& model_;
    platform::Bundle const& bundle_;
    platform::RunLoop const& runLoop_;
    Build build_;
    Bind bind_;
    WindowMirror* parent_;
    std::unique_ptr<QDialog> widget_;
    std::unique_ptr<Binder> binder_;
    QPointer<AlertBox> sheet_;
    /// True until the end of the main-loop turn in which the window was shown.
    bool isNew_ = false;
    bool isReshowing_ = false;
    std::vector<platform::Subscription> subscriptions_;
};
