// SPDX-License-Identifier: MIT
#include "windows/WindowMirror.h"

#include "desktop/ActivationToken.h"
#include "platform/Bundle.h"
#include "windows/AlertBox.h"
#include "windows/Mnemonics.h"
#include "windows/Text.h"

#include <QApplication>
#include <QDialog>
#include <QIcon>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QStyle>
#include <QVBoxLayout>
#include <QWindow>

#include <algorithm>

namespace {

// Allows for a title bar and borders, whose size is unknown before the window is shown.
constexpr QSize roomForFrame { 16, 48 };

// The toolkit's dialogs centre themselves on the screen each time. The desktop knows better where to put them, since it
// knows its panels.
class PlacedByDesktop final : public QDialog {
public:
    using QDialog::QDialog;

private:
    void showEvent(QShowEvent* /*event*/) override { }
};

bool isOnWayland() { return QGuiApplication::platformName().startsWith(QLatin1String("wayland")); }

}

WindowMirror::WindowMirror(platform::Window& model, platform::Bundle const& bundle, platform::RunLoop const& runLoop,
    Build build, Bind bind, WindowMirror* parent)
    : model_(model)
    , bundle_(bundle)
    , runLoop_(runLoop)
    , build_(std::move(build))
    , bind_(std::move(bind))
    , parent_(parent)
{
    subscriptions_.push_back(model.visible.observe([this](bool visible) { setShown(visible); }));
    subscriptions_.push_back(model.observeFrontRequests([this] { bringToFront(); }));
}

WindowMirror::~WindowMirror()
{
    // Destroying the window must not count as the user closing it.
    if (widget_)
        widget_->removeEventFilter(this);
}

QDialog& WindowMirror::widget()
{
    if (!widget_)
        buildWidget();
    return *widget_;
}

void WindowMirror::buildWidget()
{
    if (parent_) {
        widget_ = std::make_unique<PlacedByDesktop>(&parent_->widget());
        widget_->setWindowModality(Qt::WindowModal);
    } else {
        widget_ = std::make_unique<PlacedByDesktop>(nullptr, Qt::Window);
    }
    // Deferred until here, since reading the desktop's icon theme would take a seventh of the start-up time.
    widget_->setWindowIcon(QIcon::fromTheme(toQt(bundle_.infoText("CFBundleIconFile"))));
    build_(*widget_);
    binder_ = std::make_unique<Binder>(*widget_, bundle_, runLoop_);
    bind_(*binder_);
    assignMnemonics(*widget_);
    QObject::connect(
        new QShortcut(QKeySequence::Close, widget_.get()), &QShortcut::activated, widget_.get(), &QDialog::close);
    widget_->installEventFilter(this);

    auto const keep
        = [this](platform::Subscription subscription) { subscriptions_.push_back(std::move(subscription)); };
    keep(model_.title.observe([this](std::string const& title) { widget_->setWindowTitle(asWindowTitle(title)); }));
    keep(model_.backgroundColor.observe([this](auto const& color) { setBackground(color); }));
    keep(model_.fullScreen.observe([this](bool fullScreen) {
        auto const state = widget_->windowState();
        widget_->setWindowState(fullScreen ? state | Qt::WindowFullScreen : state & ~Qt::WindowFullScreen);
    }));
    keep(model_.attachedSheet.observeChanges([this](auto const&) { showAlert(); }));
}

void WindowMirror::setShown(bool shown)
{
    if (shown) {
        auto& window = widget();
        putInPlace();
        growToFit();
        window.show();
        if (parent_)
            focusFirstField();
        isNew_ = true;
        QMetaObject::invokeMethod(this, [this] { isNew_ = false; }, Qt::QueuedConnection);
    } else if (widget_) {
        widget_->hide();
    }
    showAlert();
}

// Restores the user's position and size as far as the screens are still there, else uses the window's own size, limited
// to the screen.
void WindowMirror::putInPlace()
{
    if (parent_ || widget_->isVisible())
        return;
    auto wanted = widget_->testAttribute(Qt::WA_Resized) ? widget_->size() : widget_->sizeHint();
    if (auto const least = widget_->minimumSizeHint(); least != least.boundedTo(roomOnScreen())) {
        makeScrollable();
        int const bar = widget_->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
        wanted += QSize(bar, bar);
    }
    if (!widget_->restoreGeometry(QByteArray::fromBase64(model_.place.get().c_str())))
        widget_->resize(wanted.boundedTo(roomOnScreen()));
}

QSize WindowMirror::roomOnScreen() const { return widget_->screen()->availableSize() - roomForFrame; }

// Used if the screen is too small for the window.
void WindowMirror::makeScrollable()
{
    auto* const content = new QWidget;
    content->setLayout(widget_->layout());
    auto* const area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(content);
    auto* const layout = new QVBoxLayout(widget_.get());
    layout->setContentsMargins({});
    layout->addWidget(area);
    widget_->setMinimumSize(0, 0);
}

// A text that now takes more lines would squeeze the others.
void WindowMirror::growToFit()
{
    auto const* const layout = widget_->layout();
    int const needed = layout && layout->hasHeightForWidth() ? layout->totalHeightForWidth(widget_->width()) : 0;
    int const height = std::min(needed, roomOnScreen().height());
    if (height > widget_->height())
        widget_->resize(widget_->width(), height);
}

void WindowMirror::notePlace()
{
    if (!parent_ && widget_ && !widget_->isFullScreen())
        model_.userPlaced(widget_->saveGeometry().toBase64().toStdString());
}

// A sheet is filled in from the top each time.
void WindowMirror::focusFirstField()
{
    if (auto* const field = widget_->findChild<QLineEdit*>()) {
        field->setFocus();
        field->selectAll();
    }
}

// Whether the keyboard focus is in the window or in one of its sheets.
bool WindowMirror::isActive() const
{
    auto const* window = QApplication::activeWindow();
    while (window && window != widget_.get())
        window = window->parentWidget();
    return window;
}

// Whether the desktop would not raise the open window, although it would put a new one in front. A Wayland compositor
// refuses without an activation token. On X11 the toolkit does not ask the window manager to raise a window that is
// withdrawn, as windows on another workspace are.
bool WindowMirror::staysWhereItIs() const
{
    if (isOnWayland())
        return !hasActivationToken();
    return !widget_->isMinimized() && !widget_->windowHandle()->isExposed();
}

void WindowMirror::bringToFront()
{
    bool const mustReshow = !isNew_ && !isActive() && staysWhereItIs();
    widget_->setWindowState(widget_->windowState() & ~Qt::WindowMinimized);
    if (mustReshow)
        reshow();
    widget_->raise();
    widget_->activateWindow();
    dropActivationToken();
}

// Sheets are hidden before their window and shown after it. Without WA_Resized, a window that the user has resized
// would come back with its initial size.
void WindowMirror::reshow()
{
    QWidgetList windows { widget_.get() };
    for (auto* const sheet : widget_->findChildren<QDialog*>()) {
        if (sheet->isVisible())
            windows.push_back(sheet);
    }
    isReshowing_ = true;
    std::for_each(windows.rbegin(), windows.rend(), [](QWidget* window) { window->hide(); });
    for (auto* const window : windows) {
        bool const wasResized = window->testAttribute(Qt::WA_Resized);
        window->setAttribute(Qt::WA_Resized);
        window->show();
        window->setAttribute(Qt::WA_Resized, wasResized);
    }
    isReshowing_ = false;
}

void WindowMirror::setBackground(std::optional<platform::Color> const& color)
{
    auto palette = QPalette();
    if (color) {
        palette.setColor(QPalette::Window, toQt(*color));
        // The focus and the selection must stand out from both the background and a field.
        palette.setColor(QPalette::Highlight, QColor(0xFF, 0xC1, 0x07));
        palette.setColor(QPalette::HighlightedText, Qt::black);
    }
    widget_->setPalette(palette);
    // Set on each label, because the window would pass it on to controls that have a background of their own.
    if (color)
        palette.setColor(QPalette::WindowText, Qt::white);
    for (auto* const label : widget_->findChildren<QLabel*>()) {
        if (label->window() == widget_.get())
            label->setPalette(palette);
    }
}

// Tells the model when the window is closed by its title bar or by Escape.
bool WindowMirror::eventFilter(QObject* watched, QEvent* event)
{
    bool const staysShown = isReshowing_ || (parent_ && parent_->isReshowing_);
    bool const isGoing
        = event->type() == QEvent::Hide && !event->spontaneous() && watched == widget_.get() && !staysShown;
    if (isGoing)
        notePlace();
    if (isGoing && model_.visible.get())
        model_.userClosed();
    if (event->type() == QEvent::LayoutRequest && watched == widget_.get())
        growToFit();
    if (event->type() == QEvent::WindowStateChange && watched == widget_.get())
        model_.fullScreen.set(widget_->isFullScreen());
    return QObject::eventFilter(watched, event);
}

// An alert for a hidden window waits until the window is shown.
void WindowMirror::showAlert()
{
    if (sheet_)
        sheet_->deleteLater();
    sheet_.clear();
    auto const* const attached = std::get_if<std::shared_ptr<platform::Alert const>>(&model_.attachedSheet.get());
    if (!attached || !model_.visible.get())
        return;

    sheet_ = new AlertBox(**attached, bundle_.localizedString("OK"), *widget_);
    QObject::connect(
        sheet_, &QMessageBox::finished, this, [this, sheet = sheet_] { model_.userAnswered(sheet->returnCode()); });
    sheet_->open();
}
