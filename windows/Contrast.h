// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>

#include <algorithm>
#include <cmath>

// Relative luminance and contrast ratio as WCAG 2 defines them.

inline double luminance(QColor const& color)
{
    auto const linear
        = [](double part) { return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// From 1 for equal colours to 21 for black on white.
inline double contrast(QColor const& one, QColor const& other)
{
    auto const [darker, lighter] = std::minmax({ luminance(one), luminance(other) });
    return (lighter + 0.05) / (darker + 0.05);
}
