// SPDX-License-Identifier: MIT
#include "windows/LevelBar.h"

#include "platform/Bundle.h"
#include "windows/Text.h"

#include <QAccessibleWidget>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// The bar as assistive technologies see it.
class AccessibleLevel final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit AccessibleLevel(LevelBar& bar)
        : QAccessibleWidget(&bar, QAccessible::ProgressBar)
        , bar_(bar)
    {
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Description ? bar_.description() : QAccessibleWidget::text(kind);
    }

    QAccessible::State state() const override
    {
        auto state = QAccessibleWidget::state();
        state.readOnly = true;
        return state;
    }

    QVariant currentValue() const override { return bar_.percentage(); }
    QVariant minimumValue() const override { return 0; }
    QVariant maximumValue() const override { return std::max(100, bar_.percentage()); }
    QVariant minimumStepSize() const override { return 0; }
    void setCurrentValue(QVariant const& /*value*/) override { }

private:
    LevelBar& bar_;
};

QAccessibleInterface* makeAccessible(QString const& /*className*/, QObject* object)
{
    auto* const bar = qobject_cast<LevelBar*>(object);
    return bar ? new AccessibleLevel(*bar) : nullptr;
}

}

LevelBar::LevelBar(QWidget* parent)
    : QWidget(parent)
{
    QAccessible::installFactory(makeAccessible);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void LevelBar::setMaximum(double maximum) { set(maximum_, maximum); }
void LevelBar::setValue(double value) { set(value_, value); }
void LevelBar::setWarningValue(double value) { set(warningValue_, value); }
void LevelBar::setCriticalValue(double value) { set(criticalValue_, value); }

void LevelBar::setDescriptions(Descriptions descriptions)
{
    descriptions_ = std::move(descriptions);
    requestAnnouncement();
}

void LevelBar::set(double& field, double value)
{
    field = value;
    update();
    requestAnnouncement();
}

// Announces at the end of the turn, because the values of a report are set one after the other.
void LevelBar::requestAnnouncement()
{
    if (std::exchange(isAnnouncing_, true))
        return;
    QMetaObject::invokeMethod(this, [this] { announce(); }, Qt::QueuedConnection);
}

void LevelBar::announce()
{
    isAnnouncing_ = false;
    if (auto const now = description(); std::exchange(announced_, now) == now)
        return;
    QAccessibleValueChangeEvent value(this, percentage());
    QAccessible::updateAccessibility(&value);
    QAccessibleEvent words(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&words);
}

double LevelBar::share(double value) const
{
    double const share = value / maximum_;
    return std::isfinite(share) ? std::clamp(share, 0.0, 1.0) : 0.0;
}

int LevelBar::percentage() const
{
    double const percentage = value_ / maximum_ * 100;
    constexpr double most = 1'000'000;
    return std::isfinite(percentage) ? static_cast<int>(std::clamp(percentage, -most, most)) : 0;
}

QString LevelBar::description() const
{
    return toQt(platform::withArgument(zone().description.toStdString(), std::to_string(percentage()) + '%'));
}

LevelBar::Zone LevelBar::zone() const
{
    if (value_ >= criticalValue_)
        return { QColor(0xC6, 0x28, 0x28), Qt::BDiagPattern, descriptions_.critical };
    if (value_ >= warningValue_)
        return { QColor(0xB2, 0x6A, 0x00), Qt::Dense6Pattern, descriptions_.warning };
    return { QColor(0x2B, 0x7A, 0x33), Qt::NoBrush, descriptions_.normal };
}

void LevelBar::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // Fills up in the user's reading direction.
    if (layoutDirection() == Qt::RightToLeft) {
        painter.translate(width(), 0);
        painter.scale(-1, 1);
    }
    QRectF const frame = QRectF(rect()).adjusted(0.5, 2.5, -0.5, -2.5);
    QPainterPath outline;
    outline.addRoundedRect(frame, 4, 4);

    painter.save();
    painter.setClipPath(outline);
    painter.fillRect(frame, palette().color(QPalette::Base));
    QRectF filled = frame;
    filled.setWidth(frame.width() * share(value_));
    auto const [color, pattern, description] = zone();
    painter.fillRect(filled, color);
    painter.fillRect(filled, QBrush(color.lighter(150), pattern));
    painter.restore();

    painter.setPen(palette().color(QPalette::Mid));
    painter.drawPath(outline);
    painter.setPen(QPen(palette().color(QPalette::WindowText), 1, Qt::DotLine));
    for (double const mark : { warningValue_, criticalValue_ }) {
        double const x = frame.left() + frame.width() * share(mark);
        painter.drawLine(QPointF(x, frame.top()), QPointF(x, frame.bottom()));
    }
}
