// SPDX-License-Identifier: MIT
#include "windows/HighContrastStyle.h"

#include <QPainter>
#include <QStyleOption>

namespace {

constexpr double frameWidth = 1;
constexpr double focusWidth = 3;

// Draws inside the control's rectangle, so that the frame stands out from any background.
void drawFrame(QPainter& painter, QRectF const& place, QColor const& color, double width)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color, width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    double const inset = width / 2;
    painter.drawRoundedRect(place.adjusted(inset, inset, -inset, -inset), 2, 2);
    painter.restore();
}

void drawControlFrame(QPainter& painter, QStyleOption const& option)
{
    bool const hasFocus = option.state.testFlag(QStyle::State_HasFocus);
    auto const role = hasFocus ? QPalette::Highlight : QPalette::Text;
    drawFrame(painter, option.rect, option.palette.color(role), hasFocus ? focusWidth : frameWidth);
}

}

void HighContrastStyle::drawPrimitive(
    PrimitiveElement element, QStyleOption const* option, QPainter* painter, QWidget const* widget) const
{
    if (element == PE_FrameFocusRect)
        return drawFrame(*painter, option->rect, option->palette.color(QPalette::Highlight), 2);
    RoomyStyle::drawPrimitive(element, option, painter, widget);
    switch (element) {
    case PE_PanelLineEdit:
    case PE_PanelButtonCommand:
    case PE_IndicatorCheckBox:
    case PE_FrameMenu:
    case PE_Frame:
        return drawControlFrame(*painter, *option);
    default:
        return;
    }
}

void HighContrastStyle::drawComplexControl(
    ComplexControl control, QStyleOptionComplex const* option, QPainter* painter, QWidget const* widget) const
{
    RoomyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_ComboBox)
        drawControlFrame(*painter, *option);
}
