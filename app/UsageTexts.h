// SPDX-License-Identifier: MIT
#pragma once

#include "app/UsageFigures.h"

#include <string>
#include <string_view>

class VolumeFormatter;

/// Shown in place of a figure that there cannot be.
inline constexpr std::string_view errorText = "Error";

/// A report's figures as the texts that the user reads. Main thread only.
class UsageTexts {
public:
    struct Texts {
        /// In the usage window.
        std::string field;
        /// In megabytes, or in words without a cap.
        std::string toolTip;
        /// In the menu and the status item.
        std::string line;
    };

    /// Takes figures in megabytes. The formatter has to outlive the texts.
    UsageTexts(UsageFigures const& figures, VolumeFormatter const& formatter);

    Texts textsOf(double UsageFigures::* figure) const;
    /// The figure that the user chose for the status item, by its position in the preferences; an error for any other
    /// position.
    std::string statusTitle(int choice) const;
    /// The used share of the cap. Requires a cap.
    std::string percentage() const;

private:
    UsageFigures megabytes_;
    UsageFigures scaled_;
    std::string_view unit_;
    VolumeFormatter const& formatter_;
};
