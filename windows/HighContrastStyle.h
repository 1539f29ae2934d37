// SPDX-License-Identifier: MIT
#pragma once

#include "windows/RoomyStyle.h"

/// The usual style with strong frames, and a stronger one around the focus. The usual style derives its frames from the
/// background colour, which makes them invisible on black.
class HighContrastStyle final : public RoomyStyle {
public:
    void drawPrimitive(
        PrimitiveElement element, QStyleOption const* option, QPainter* painter, QWidget const* widget) const override;
    void drawComplexControl(ComplexControl control, QStyleOptionComplex const* option, QPainter* painter,
        QWidget const* widget) const override;
};
