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

platform::Task failedStartHandler;
std::function<void(int)> exitHandler;

// If the display is unreachable, Qt warns, advises the user to reinstall and calls abort(). The warning alone is more
// helpful.
void handleFailedStart(QtMsgType type, QMessageLogContext const& /*context*/, QString const& message)
{
    static QString reason;
    if (type == QtFatalMsg) {
        printError(reason.isEmpty() ? message : reason);
        failedStartHandler();
        _exit(EXIT_FAILURE);
    }
    if (isError(type))
        reason = message;
}

// The toolkit warns about features that Wayland or the compositor lacks; these are not failures.
bool isWaylandLimitation(QtMsgType type, QMessageLogContext const& context)
{
    return type == QtWarningMsg && QLatin1String(context.category).startsWith(QLatin1String("qt.qpa.wayland"));
}

void reportError(QtMsgType type, QMessageLogContext const& context, QString const& message)
{
    if (isError(type) && !isWaylandLimitation(type, context))
        printError(message);
    if (type == QtFatalMsg)
        _exit(EXIT_FAILURE);
}

void handleExit(int status, void* /*unused*/)
{
    if (exitHandler)
        exitHandler(status);
}

}

void Toolkit::reportFailedStart(platform::Task handler)
{
    failedStartHandler = std::move(handler);
    qInstallMessageHandler(handleFailedStart);
}

Toolkit::Toolkit(
    int& argumentCount, char** arguments, platform::Bundle const& bundle, std::function<void(int)> newExitHandler)
    : application_(argumentCount, arguments)
{
    // Registered here so that it runs before the toolkit's own exit handlers.
    exitHandler = std::move(newExitHandler);
    on_exit(handleExit, nullptr);
    qInstallMessageHandler(reportError);
    QApplication::setQuitOnLastWindowClosed(false);
    // The location of our icons in case the desktop's own theme is not installed.
    QIcon::setFallbackThemeName(QStringLiteral("hicolor"));
    applyLook({});
    // The autostart setting decides whether the program starts at login, not the session manager.
    QObject::connect(&application_, &QGuiApplication::saveStateRequest,
        [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); });
    // Not the display name, because the toolkit adds that to every window's title.
    QApplication::setApplicationName(toQt(bundle.infoText("CFBundleDisplayName")));
    QApplication::setDesktopFileName(toQt(bundle.identifier()));
    useLanguageOf(bundle);
}

Toolkit::~Toolkit() { exitHandler = nullptr; }

void Toolkit::useLanguageOf(platform::Bundle const& bundle)
{
    QLocale const language(toQt(bundle.language()));
    // The direction follows our texts, even if the toolkit has no translation for their language.
    QApplication::setLayoutDirection(language.textDirection());
    // The toolkit has its own texts, such as a text field's menu.
    if (translator_.load(language, QStringLiteral("qtbase"), QStringLiteral("_"),
            QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&translator_);
}
