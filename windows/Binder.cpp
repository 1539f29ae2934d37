// SPDX-License-Identifier: MIT
#include "windows/Binder.h"

#include "platform/Bundle.h"
#include "platform/Calendar.h"
#include "platform/Utf8.h"
#include "windows/LevelBar.h"
#include "windows/Text.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QEvent>
#include <QGraphicsOpacityEffect>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPropertyAnimation>
#include <QPushButton>

namespace {

QStringList toQtList(std::vector<std::string> const& texts)
{
    QStringList list;
    for (auto const& text : texts)
        list.append(toQt(text));
    return list;
}

// Faded-out and hidden widgets keep their space, so that nothing jumps.
void keepPlaceWhenHidden(QWidget& widget)
{
    auto policy = widget.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget.setSizePolicy(policy);
}

// An assistive technology only selects a line of the open list, whereas keyboard and mouse first make it the current
// one.
void takeSelectionForPick(QComboBox& box)
{
    QObject::connect(
        box.view()->selectionModel(), &QItemSelectionModel::selectionChanged, &box,
        [&box](QItemSelection const& selected) {
            auto const lines = selected.indexes();
            bool const isStill = lines.size() == 1 && box.view()->selectionModel()->isSelected(lines.front());
            if (!isStill || lines.front() == box.view()->currentIndex())
                return;
            box.setCurrentIndex(lines.front().row());
            box.hidePopup();
        },
        Qt::QueuedConnection);
}

// A user's pick counts even if it changes nothing. An assistive technology may only change the selection; if the box
// still differs from its model at the end of the turn, this was the user's choice.
template <typename ShowsModel, typename Pick> void passOnPicks(QComboBox& box, ShowsModel showsModel, Pick pick)
{
    takeSelectionForPick(box);
    QObject::connect(&box, &QComboBox::activated, &box, pick);
    QObject::connect(
        &box, &QComboBox::currentIndexChanged, &box,
        [&box, showsModel, pick] {
            if (box.currentIndex() >= 0 && !showsModel())
                pick(box.currentIndex());
        },
        Qt::QueuedConnection);
}

bool isLetter(QKeyEvent const& event)
{
    bool const isCommand = (event.modifiers() & (Qt::AltModifier | Qt::ControlModifier | Qt::MetaModifier)) != 0;
    return !isCommand && !event.text().isEmpty() && event.text().front().isLetterOrNumber();
}

bool movesThroughList(QKeyEvent const& event)
{
    switch (event.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
        return true;
    default:
        return isLetter(event);
    }
}

}

bool PickGuard::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress && movesThroughList(*static_cast<QKeyEvent*>(event))) {
        auto& box = *static_cast<QComboBox*>(watched);
        box.showPopup();
        // The open list jumps to the line with this letter.
        if (isLetter(*static_cast<QKeyEvent*>(event)))
            QCoreApplication::sendEvent(box.view(), event);
        return true;
    }
    if (event->type() != QEvent::Wheel)
        return QObject::eventFilter(watched, event);
    event->ignore();
    return true;
}

QComboBox& Binder::comboBox(char const* outlet)
{
    auto& box = child<QComboBox>(outlet);
    box.installEventFilter(&pickGuard_);
    return box;
}

Binder::Binder(QWidget& window, platform::Bundle const& bundle, platform::RunLoop const& runLoop)
    : window_(window)
    , bundle_(bundle)
    , runLoop_(runLoop)
{
    localizeTexts();
}

QString Binder::localized(QString const& key) const { return toQt(bundle_.localizedString(key.toStdString())); }

void Binder::localizeTexts()
{
    for (auto* const label : window_.findChildren<QLabel*>()) {
        if (!label->text().isEmpty())
            label->setText(localized(label->text()));
        if (auto* const named = label->buddy()) {
            named->setAccessibleName(label->text());
            label->setText(asLabel(label->text().toStdString()));
        }
    }
    for (auto* const button : window_.findChildren<QAbstractButton*>()) {
        if (!button->text().isEmpty())
            button->setText(asLabel(bundle_.localizedString(button->text().toStdString())));
    }
    for (auto* const input : window_.findChildren<QLineEdit*>()) {
        if (!input->placeholderText().isEmpty())
            input->setPlaceholderText(localized(input->placeholderText()));
    }
    for (auto* const named : window_.findChildren<QWidget*>()) {
        if (!named->accessibleName().isEmpty())
            named->setAccessibleName(localized(named->accessibleName()));
    }
}

void Binder::mirrorHidden(QWidget& widget, platform::Property<bool>& hidden)
{
    keep(hidden.observe([&widget](bool isHidden) { widget.setVisible(!isHidden); }));
}

void Binder::mirrorOpacity(QWidget& widget, platform::Opacity& opacity)
{
    keepPlaceWhenHidden(widget);
    auto* const effect = new QGraphicsOpacityEffect(&widget);
    widget.setGraphicsEffect(effect);
    auto* const animation = new QPropertyAnimation(effect, "opacity", &widget);
    // Even an effect at full opacity costs an extra rendering pass at every repaint.
    auto const restEffect = [effect] { effect->setEnabled(effect->opacity() != 1.0); };
    QObject::connect(animation, &QPropertyAnimation::finished, effect, restEffect);
    keep(opacity.fade.observe([this, effect, animation, restEffect](platform::Fade const& fade) {
        animation->stop();
        auto const uptime = runLoop_.uptime();
        double const now = fade.at(uptime);
        effect->setOpacity(now);
        restEffect();
        if (now == fade.to)
            return;
        effect->setEnabled(true);
        animation->setStartValue(now);
        animation->setEndValue(fade.to);
        auto const left = std::chrono::ceil<std::chrono::milliseconds>(fade.start + fade.duration - uptime);
        animation->setDuration(static_cast<int>(left.count()));
        animation->start();
    }));
}

void Binder::bind(char const* outlet, platform::Button& model)
{
    auto& button = child<QPushButton>(outlet);
    QObject::connect(&button, &QPushButton::clicked, &button, [&model] { model.userClicked(); });
    mirrorHidden(button, model.hidden);
    keep(model.enabled.observe([&button](bool isEnabled) { button.setEnabled(isEnabled); }));
    keep(model.title.observe([&button](std::string const& title) {
        // Most titles are set in the layout.
        if (!title.empty())
            button.setText(asLabel(title));
    }));
}

void Binder::bind(char const* outlet, platform::CheckBox& model)
{
    auto& box = child<QCheckBox>(outlet);
    keep(model.on.observe([&box](bool on) { box.setChecked(on); }));
    mirrorHidden(box, model.hidden);
    keep(model.titleColor.observe([&box](std::optional<platform::Color> const& color) {
        auto palette = box.palette();
        if (color)
            palette.setColor(QPalette::WindowText, toQt(*color));
        box.setPalette(palette);
    }));
    // Use toggled rather than clicked, because an assistive technology may toggle the box. A state set by the program
    // is already in the model.
    QObject::connect(&box, &QCheckBox::toggled, &box, [&model](bool on) {
        if (on != model.on.get())
            model.userToggled(on);
    });
}

void Binder::bind(char const* outlet, platform::ComboBox& model)
{
    auto& box = comboBox(outlet);
    // If the text matches no item, it is shown as the placeholder.
    auto const showText = [&box, &model, noItem = localized(QStringLiteral("NO_CONNECTION"))] {
        auto const text = toQt(model.text.get());
        int const index = box.findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
        box.setPlaceholderText(index >= 0 ? QString() : text.isEmpty() ? noItem : text);
        box.setToolTip(text.isEmpty() ? text : Qt::convertFromPlainText(inLines(text)));
        box.setCurrentIndex(index);
    };
    keep(model.items.observe([&box, showText](std::vector<std::string> const& items) {
        box.clear();
        box.addItems(toQtList(items));
        showText();
    }));
    keep(model.text.observeChanges([showText](std::string const&) { showText(); }));
    passOnPicks(
        box, [&box, &model] { return box.currentText() == toQt(model.text.get()); },
        [&model](int index) { model.userSelected(static_cast<std::size_t>(index)); });
}

void Binder::bind(char const* outlet, platform::PopUpButton& model)
{
    auto& box = comboBox(outlet);
    keep(model.items.observe([&box, &model](std::vector<std::string> const& items) {
        box.clear();
        box.addItems(toQtList(items));
        box.setCurrentIndex(model.indexOfSelectedItem.get());
    }));
    keep(model.indexOfSelectedItem.observeChanges([&box](int index) { box.setCurrentIndex(index); }));
    passOnPicks(
        box, [&box, &model] { return box.currentIndex() == model.indexOfSelectedItem.get(); },
        [&model](int index) { model.userSelected(index); });
}

void Binder::bindLabel(char const* outlet, platform::TextField& model)
{
    auto& label = child<QLabel>(outlet);
    label.setTextFormat(Qt::PlainText);
    keep(model.text.observe([&label](std::string const& text) { label.setText(toQt(text)); }));
    mirrorHidden(label, model.hidden);
    mirrorOpacity(label, model.opacity);
}

void Binder::bindRemark(char const* outlet, platform::TextField& model)
{
    auto& label = child<QLabel>(outlet);
    label.setTextFormat(Qt::PlainText);
    keepPlaceWhenHidden(label);
    keep(model.text.observe([&label](std::string const& text) {
        label.setText(toQt(text));
        label.setVisible(!text.empty());
    }));
}

void Binder::bindFigure(char const* outlet, platform::TextField& model)
{
    // In letters of average width. Every figure of a real connection is shorter.
    constexpr int maximumWidth = 24;
    bindLabel(outlet, model);
    auto& label = child<QLabel>(outlet);
    auto const show = [&label, &model, spoken = label.accessibleName().toStdString()](std::string const&) {
        auto const whole = toQt(model.text.get());
        auto const& metrics = label.fontMetrics();
        auto const shown = metrics.elidedText(whole, Qt::ElideRight, maximumWidth * metrics.averageCharWidth());
        label.setText(shown);
        QStringList toolTip { inLines(toQt(model.toolTip.get())) };
        if (shown != whole)
            toolTip.prepend(inLines(whole));
        label.setToolTip(toolTip.join(QLatin1Char('\n')).trimmed());
        // On screen, the surrounding table explains a figure; a screen reader needs its name.
        label.setAccessibleName(toQt(platform::withArgument(spoken, model.text.get())));
    };
    keep(model.text.observe(show));
    keep(model.toolTip.observeChanges(show));
}

void Binder::bindInput(char const* outlet, platform::TextField& model)
{
    auto& input = child<QLineEdit>(outlet);
    keep(model.text.observe([&input](std::string const& text) {
        // Setting the text moves the cursor, which must not happen while the user types.
        auto const shown = toQt(text);
        if (shown == input.text())
            return;
        input.setText(shown);
        // Typing replaces what the program fills in.
        if (input.hasFocus())
            input.selectAll();
    }));
    // Use textChanged rather than textEdited, for the same reason as with a check box.
    QObject::connect(&input, &QLineEdit::textChanged, &input, [&input, &model](QString const& text) {
        if (text == toQt(model.text.get()))
            return;
        auto const beforeCursor = text.left(input.cursorPosition()).toStdString();
        model.userTyped(text.toStdString());
        auto const kept = toQt(model.text.get());
        if (kept == text)
            return;
        input.setText(kept);
        input.setCursorPosition(static_cast<int>(toQt(platform::withoutControlCharacters(beforeCursor)).size()));
    });
}

void Binder::bind(char const* outlet, platform::LevelIndicator& model)
{
    auto& bar = child<LevelBar>(outlet);
    bar.setDescriptions({ localized(QStringLiteral("LEVEL_NORMAL")), localized(QStringLiteral("LEVEL_WARNING")),
        localized(QStringLiteral("LEVEL_CRITICAL")) });
    keep(model.maxValue.observe([&bar](double value) { bar.setMaximum(value); }));
    keep(model.doubleValue.observe([&bar](double value) { bar.setValue(value); }));
    keep(model.warningValue.observe([&bar](double value) { bar.setWarningValue(value); }));
    keep(model.criticalValue.observe([&bar](double value) { bar.setCriticalValue(value); }));
    mirrorHidden(bar, model.hidden);
    mirrorOpacity(bar, model.opacity);
}

void Binder::bind(char const* outlet, platform::ProgressIndicator& model)
{
    auto& bar = child<QProgressBar>(outlet);
    // A progress bar with an empty range is animated.
    keep(model.spinning.observe([&bar](bool spinning) { bar.setRange(0, spinning ? 0 : 1); }));
    mirrorHidden(bar, model.hidden);
}

void Binder::bind(char const* outlet, platform::DatePicker& model)
{
    auto& box = comboBox(outlet);
    keepPlaceWhenHidden(box);
    auto const listed = std::make_shared<std::vector<platform::Date>>();
    auto const showMonth = [&box, &model, listed] {
        auto const monthOf = [&model](platform::Date date) { return platform::calendarMonth(date, model.locale); };
        auto const shown = std::ranges::find(*listed, monthOf(model.dateValue.get()), monthOf);
        box.setCurrentIndex(static_cast<int>(shown - listed->begin()));
    };
    auto const listMonths = [&box, &model, listed, showMonth](platform::Date) {
        *listed = platform::monthsBetween(model.minDate.get(), model.maxDate.get(), model.locale);
        box.clear();
        for (auto const date : *listed)
            box.addItem(toQt(platform::monthTitle(date, model.locale)));
        showMonth();
    };
    keep(model.minDate.observe(listMonths));
    keep(model.maxDate.observeChanges(listMonths));
    keep(model.dateValue.observeChanges([showMonth](platform::Date) { showMonth(); }));
    // Hiding the box while its month loads takes its focus, which the next key press needs.
    auto const hadFocus = std::make_shared<bool>();
    keep(model.hidden.observe([&box, hadFocus](bool isHidden) {
        if (isHidden)
            *hadFocus = box.hasFocus() || !box.window()->isVisible();
        box.setVisible(!isHidden);
        if (!isHidden && *hadFocus)
            box.setFocus();
    }));
    passOnPicks(
        box,
        [&box, &model, listed] {
            auto const index = static_cast<std::size_t>(box.currentIndex());
            return index < listed->size()
                && platform::calendarMonth(listed->at(index), model.locale)
                == platform::calendarMonth(model.dateValue.get(), model.locale);
        },
        [&model, listed](int index) { model.userPicked(listed->at(static_cast<std::size_t>(index))); });
}

void Binder::bind(char const* outlet, platform::WebView& model, WebPluginLoader& loader)
{
    auto& place = child<QWidget>(outlet);
    mirrorHidden(place, model.hidden);
    webViews_.push_back(std::make_unique<WebViewMirror>(model, place, loader));
}
