// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

/// Gives each of the window's check boxes, push buttons and labels with a buddy a mnemonic letter to use with Alt: the
/// first letter of a word if one is free, else any other letter. A text without a free letter is left unchanged. Only
/// for the program's own texts, already converted with asLabel(). Call it once per window.
void assignMnemonics(QWidget& window);
