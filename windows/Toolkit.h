// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Bundle.h"
#include "platform/RunLoop.h"

#include <QApplication>
#include <QTranslator>

/// The toolkit as the program wants it: with the texts' language, our look, and its warnings as lines of ours on
/// standard error. One at a time; main thread only.
class Toolkit final {
public:
    /// As the program was called. A toolkit that cannot be used cannot be taken down either: the last resort is called
    /// then, after a line that says why, and must not return.
    Toolkit(int& argumentCount, char** arguments, platform::Bundle const& bundle, platform::Task lastResort);

private:
    void speak(platform::Bundle const& bundle);

    /// Before the application is made.
    bool const areFailuresReported_;
    QApplication application_;
    QTranslator translator_;
};
