// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Bundle.h"
#include "platform/RunLoop.h"

#include <QApplication>
#include <QTranslator>

#include <functional>

/// The toolkit, set up with the texts' language and our look, and with its warnings printed to standard error in our
/// format. Only one instance may exist. Main thread only.
class Toolkit final {
public:
    /// If the toolkit fails to start, prints the reason in one line and calls the handler.
    static void reportFailedStart(platform::Task handler);

    /// Takes the program's arguments, and a function that is called with the exit status if the toolkit ends the
    /// process.
    Toolkit(
        int& argumentCount, char** arguments, platform::Bundle const& bundle, std::function<void(int)> newExitHandler);
    ~Toolkit();
    Toolkit(Toolkit const&) = delete;
    Toolkit& operator=(Toolkit const&) = delete;

private:
    void useLanguageOf(platform::Bundle const& bundle);

    QApplication application_;
    QTranslator translator_;
};
