// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

/// The toolkit's Fusion style, with some room between a button's letters and its edges, and with an ellipsis where a
/// pop-up has no room for its text.
class RoomyStyle : public QProxyStyle {
public:
    RoomyStyle();

    QSize sizeFromContents(
        ContentsType type, QStyleOption const* option, QSize const& contents, QWidget const* widget) const override;
    void drawControl(
        ControlElement element, QStyleOption const* option, QPainter* painter, QWidget const* widget) const override;
};
