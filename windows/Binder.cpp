// SPDX-License-Identifier: MIT
#include "windows/Binder.h"

#include "platform/Bundle.h"
#include "platform/Calendar.h"
#include "platform/Utf8.h"
#include "windows/LevelBar.h"
#include "windows/Text.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGraphicsOpacityEffect>
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

// Faded-out and hidden widgets keep their place, so that nothing jumps.
void keepPlaceWhenHidden(QWidget& widget)
{
    auto policy = widget.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget.setSizePolicy(policy);
}

}

bool WheelGuard::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Wheel)
        return QObject::eventFilter(watched, event);
    event->ignore();
    return true;
}

QComboBox& Binder::comboBox(char const* outlet)
{
    auto& box = widget<QComboBox>(outlet);
    box.installEventFilter(&wheelGuard_);
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
    // An effect that does nothing still costs a detour at every repaint.
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
    auto& button = widget<QPushButton>(outlet);
    QObject::connect(&button, &QPushButton::clicked, &button, [&model] { model.userClicked(); });
    mirrorHidden(button, model.hidden);
    keep(model.title.observe([&button](std::string const& title) {
        // Most titles come with the layout.
        if (!title.empty())
            button.setText(asLabel(title));
    }));
}

void Binder::bind(char const* outlet, platform::CheckBox& model)
{
    auto& box = widget<QCheckBox>(outlet);
    keep(model.on.observe([&box](bool on) { box.setChecked(on); }));
    mirrorHidden(box, model.hidden);
    keep(model.titleColor.observe([&box](std::optional<platform::Color> const& color) {
        auto palette = box.palette();
        if (color)
            palette.setColor(QPalette::WindowText, toQt(*color));
        box.setPalette(palette);
    }));
    // clicked, not toggled: a change made by the program must not come back as the user's.
    QObject::connect(&box, &QCheckBox::clicked, &box, [&model](bool on) { model.userToggled(on); });
}

void Binder::bind(char const* outlet, platform::ComboBox& model)
{
    auto& box = comboBox(outlet);
    // The text may be no item: then it shows in place of one.
    auto const showText = [&box, &model] {
        auto const text = toQt(model.text.get());
        int const index = box.findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
        box.setPlaceholderText(index < 0 ? text : QString());
        box.setCurrentIndex(index);
    };
    keep(model.items.observe([&box, showText](std::vector<std::string> const& items) {
        box.clear();
        box.addItems(toQtList(items));
        showText();
    }));
    keep(model.text.observeChanges([showText](std::string const&) { showText(); }));
    QObject::connect(&box, &QComboBox::activated, &box,
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
    QObject::connect(&box, &QComboBox::activated, &box, [&model](int index) { model.userSelected(index); });
}

void Binder::bindLabel(char const* outlet, platform::TextField& model)
{
    auto& label = widget<QLabel>(outlet);
    label.setTextFormat(Qt::PlainText);
    keep(model.text.observe([&label](std::string const& text) { label.setText(toQt(text)); }));
    mirrorHidden(label, model.hidden);
    mirrorOpacity(label, model.opacity);
}

void Binder::bindFigure(char const* outlet, platform::TextField& model)
{
    // In letters of average width. Every figure of a real connection is shorter.
    constexpr int maximumWidth = 24;
    bindLabel(outlet, model);
    auto& label = widget<QLabel>(outlet);
    auto const show = [&label, &model, spoken = label.accessibleName()](std::string const&) {
        auto const whole = toQt(model.text.get());
        auto const& metrics = label.fontMetrics();
        auto const shown = metrics.elidedText(whole, Qt::ElideRight, maximumWidth * metrics.averageCharWidth());
        label.setText(shown);
        QStringList toolTip { inLines(toQt(model.toolTip.get())) };
        if (shown != whole)
            toolTip.prepend(inLines(whole));
        label.setToolTip(toolTip.join(QLatin1Char('\n')).trimmed());
        // The table around a figure gives its meaning; by ear it needs to say what it is.
        label.setAccessibleName(filledIn(spoken, whole));
    };
    keep(model.text.observe(show));
    keep(model.toolTip.observeChanges(show));
}

void Binder::bindInput(char const* outlet, platform::TextField& model)
{
    auto& input = widget<QLineEdit>(outlet);
    keep(model.text.observe([&input](std::string const& text) {
        // Setting the text moves the cursor, which the user's own typing must not.
        if (auto const shown = toQt(text); shown != input.text())
            input.setText(shown);
    }));
    QObject::connect(&input, &QLineEdit::textEdited, &input, [&input, &model](QString const& text) {
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
    auto& bar = widget<LevelBar>(outlet);
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
    auto& bar = widget<QProgressBar>(outlet);
    // A bar from 0 to 0 is on the move.
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
    // Hidden while its month loads, it loses the focus that the next pick by key needs.
    auto const hadFocus = std::make_shared<bool>();
    keep(model.hidden.observe([&box, hadFocus](bool isHidden) {
        if (isHidden)
            *hadFocus = box.hasFocus() || !box.window()->isVisible();
        box.setVisible(!isHidden);
        if (!isHidden && *hadFocus)
            box.setFocus();
    }));
    QObject::connect(&box, &QComboBox::activated, &box,
        [&model, listed](int index) { model.userPicked(listed->at(static_cast<std::size_t>(index))); });
}

void Binder::bind(char const* outlet, platform::WebView& model, WebPluginLoader& loader)
{
    auto& place = widget<QWidget>(outlet);
    mirrorHidden(place, model.hidden);
    webViews_.push_back(std::make_unique<WebViewMirror>(model, place, loader));
}
