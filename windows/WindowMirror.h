// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Window.h"
#include "windows/Binder.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

class QDialog;
class QMessageBox;

/// Shows a window's model as a real window. Its widgets are built when it is first shown.
class WindowMirror final : public QObject {
    Q_OBJECT

public:
    /// Sets up the widgets of a new window.
    using Build = std::function<void(QDialog& window)>;
    /// Ties the models to the widgets that were built.
    using Bind = std::function<void(Binder& binder)>;

    /// A window that is a sheet names the window it stands on.
    WindowMirror(platform::Window& model, platform::Bundle const& bundle, platform::RunLoop const& runLoop, Build build,
        Bind bind, WindowMirror* parent = nullptr);
    ~WindowMirror() override;

    /// The real window, built if it was not; for what only a desktop adds.
    QDialog& widget();

    /// Tells the model where the window is, or was when it was closed.
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
    void showAnew();
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
    QPointer<QMessageBox> sheet_;
    /// Until the end of the main-loop turn in which it was shown.
    bool isNew_ = false;
    bool isBeingShownAnew_ = false;
    std::vector<platform::Subscription> subscriptions_;
};
