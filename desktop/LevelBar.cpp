// SPDX-License-Identifier: MIT
#include "desktop/LevelBar.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

LevelBar::LevelBar(QWidget* parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void LevelBar::setMaximum(double maximum) { set(maximum_, maximum); }
void LevelBar::setValue(double value) { set(value_, value); }
void LevelBar::setWarningValue(double value) { set(warningValue_, value); }
void LevelBar::setCriticalValue(double value) { set(criticalValue_, value); }

void LevelBar::set(double& field, double value)
{
    field = value;
    setAccessibleDescription(QString::number(percentage()) + QLatin1Char('%'));
    update();
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

LevelBar::Zone LevelBar::zone() const
{
    if (value_ >= criticalValue_)
        return { QColor(0xC6, 0x28, 0x28), Qt::BDiagPattern };
    if (value_ >= warningValue_)
        return { QColor(0xB2, 0x6A, 0x00), Qt::Dense6Pattern };
    return { QColor(0x2B, 0x7A, 0x33), Qt::NoBrush };
}

void LevelBar::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QRectF const frame = QRectF(rect()).adjusted(0.5, 2.5, -0.5, -2.5);
    QPainterPath outline;
    outline.addRoundedRect(frame, 4, 4);

    painter.save();
    painter.setClipPath(outline);
    painter.fillRect(frame, palette().color(QPalette::Base));
    QRectF filled = frame;
    filled.setWidth(frame.width() * share(value_));
    auto const [color, pattern] = zone();
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
