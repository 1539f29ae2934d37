// SPDX-License-Identifier: MIT
#include "windows/RoomyStyle.h"

#include <QStyleOption>

#include <algorithm>

namespace {

// In pixels, for both sides together.
constexpr int roomBesideLetters = 24;

}

RoomyStyle::RoomyStyle()
    : QProxyStyle(QStringLiteral("Fusion"))
{
}

QSize RoomyStyle::sizeFromContents(
    ContentsType type, QStyleOption const* option, QSize const& contents, QWidget const* widget) const
{
    auto size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    if (type == CT_PushButton)
        size.setWidth(std::max(size.width(), contents.width() + roomBesideLetters));
    return size;
}

void RoomyStyle::drawControl(
    ControlElement element, QStyleOption const* option, QPainter* painter, QWidget const* widget) const
{
    auto const* const box
        = element == CE_ComboBoxLabel ? qstyleoption_cast<QStyleOptionComboBox const*>(option) : nullptr;
    if (!box)
        return QProxyStyle::drawControl(element, option, painter, widget);
    auto elided = *box;
    auto const place = subControlRect(CC_ComboBox, box, SC_ComboBoxEditField, widget);
    elided.currentText = box->fontMetrics.elidedText(box->currentText, Qt::ElideRight, place.width() - 2);
    QProxyStyle::drawControl(element, &elided, painter, widget);
}
