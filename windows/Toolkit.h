// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Bundle.h"
#include "platform/RunLoop.h"

#include <QApplication>
#include <QTranslator>

#include <functional>

/// The toolkit as the program wants it: with the texts' language, our look, and its warnings as lines of ours on
/// standard error. One at a time; main thread only.
class Toolkit final {
public:
    /// Says in a line why the toolkit cannot be used, should it be so, and does what is left then.
    static void reportFailedStart(platform::Task lastResort);

    /// As the program was called. Should the toolkit end the process by itself, it is told with what status.
    Toolkit(int& argumentCount, char** arguments, platform::Bundle const& bundle, std::function<void(int)> exits);
    ~Toolkit();
    Toolkit(Toolkit const&) = delete;
    Toolkit& operator=(Toolkit const&) = delete;

private:
    void speak(platform::Bundle const& bundle);

    QApplication application_;
    QTranslator translator_;
};
