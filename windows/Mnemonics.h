// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

/// Gives the window's check boxes, push buttons and labels with a buddy a letter each that reaches them together with
/// Alt: of the beginnings of their words if one is left, else any other. A text that has no such letter stays as it is.
/// For texts of the program alone, that have been made labels (asLabel); called once for a window.
void assignMnemonics(QWidget& window);
