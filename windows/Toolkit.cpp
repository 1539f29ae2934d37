// SPDX-License-Identifier: MIT
#include "windows/Toolkit.h"

#include "windows/Palettes.h"
#include "windows/Text.h"

#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QSessionManager>

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

void printError(QString const& message)
{
    std::fprintf(stderr, "usage-meter: %s\n", qPrintable(message.section(QLatin1Char('\n'), 0, 0).trimmed()));
}

bool isError(QtMsgType type) { return type != QtDebugMsg && type != QtInfoMsg; }

platform::Task lastResortOfStart;
std::function<void(int)> tellOfExit;

// A desktop that cannot be reached makes Qt warn, advise to reinstall and abort(); a user is better served by the
// warning alone.
void hearFailedStart(QtMsgType type, QMessageLogContext const& /*context*/, QString const& message)
{
    static QString reason;
    if (type == QtFatalMsg) {
        printError(reason.isEmpty() ? message : reason);
        lastResortOfStart();
        _exit(EXIT_FAILURE);
    }
    if (isError(type))
        reason = message;
}

// The toolkit warns of what Wayland does not have and of compositors that lack an extension; neither is a failure.
bool isWaylandsLimit(QtMsgType type, QMessageLogContext const& context)
{
    return type == QtWarningMsg && QLatin1String(context.category).startsWith(QLatin1String("qt.qpa.wayland"));
}

void reportError(QtMsgType type, QMessageLogContext const& context, QString const& message)
{
    if (isError(type) && !isWaylandsLimit(type, context))
        printError(message);
    if (type == QtFatalMsg)
        _exit(EXIT_FAILURE);
}

void hearExit(int status, void* /*unused*/)
{
    if (tellOfExit)
        tellOfExit(status);
}

}

void Toolkit::reportFailedStart(platform::Task lastResort)
{
    lastResortOfStart = std::move(lastResort);
    qInstallMessageHandler(hearFailedStart);
}

Toolkit::Toolkit(int& argumentCount, char** arguments, platform::Bundle const& bundle, std::function<void(int)> exits)
    : application_(argumentCount, arguments)
{
    // Only now, so that it comes before what the toolkit has to do at an exit.
    tellOfExit = std::move(exits);
    on_exit(hearExit, nullptr);
    qInstallMessageHandler(reportError);
    QApplication::setQuitOnLastWindowClosed(false);
    // Where our icons are, should the desktop's own theme not be installed.
    QIcon::setFallbackThemeName(QStringLiteral("hicolor"));
    applyLook({});
    // Whether it starts at login is the user's choice, not the session's memory.
    QObject::connect(&application_, &QGuiApplication::saveStateRequest,
        [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); });
    // Not the display name, which the toolkit adds to every window's title.
    QApplication::setApplicationName(toQt(bundle.infoText("CFBundleDisplayName")));
    QApplication::setDesktopFileName(toQt(bundle.identifier()));
    speak(bundle);
}

Toolkit::~Toolkit() { tellOfExit = nullptr; }

void Toolkit::speak(platform::Bundle const& bundle)
{
    QLocale const language(toQt(bundle.language()));
    // By our texts, whether or not the toolkit has its own in their language.
    QApplication::setLayoutDirection(language.textDirection());
    // The toolkit has texts of its own, such as those of a text field's menu.
    if (translator_.load(language, QStringLiteral("qtbase"), QStringLiteral("_"),
            QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&translator_);
}
