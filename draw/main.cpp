// SPDX-License-Identifier: MIT
// Draws the status item's pictures for Usage Meter. It reads one StatusDrawing from standard input and writes the
// pictures to standard output. Exit status 0 means that they are complete.
#include "draw/StatusIcon.h"

#include <QFont>
#include <QGuiApplication>
#include <QSettings>
#include <QStandardPaths>
#include <QStringDecoder>

#include <array>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <sys/prctl.h>
#include <sys/resource.h>

namespace {

// A font that crashes the toolkit must not leave a core file for each picture.
void limitResources()
{
    constexpr rlimit coreSize { 0, 0 };
    setrlimit(RLIMIT_CORE, &coreSize);
}

// The toolkit's warnings are irrelevant: at worst, the program does without the pictures.
void ignoreMessage(QtMsgType /*type*/, QMessageLogContext const& /*context*/, QString const& /*message*/) { }

// A theme might look for a display or change the font, and an input method would look for a bus.
void keepFromDesktop()
{
    qunsetenv("QT_QPA_PLATFORMTHEME");
    qunsetenv("QT_IM_MODULE");
}

// Reads the font that Plasma sets for all programs, in the group General. Elsewhere fontconfig decides on a sans serif.
QFont plasmasFont()
{
    auto const file = QStandardPaths::locate(QStandardPaths::GenericConfigLocation, QStringLiteral("kdeglobals"));
    auto const font = QSettings(file, QSettings::IniFormat).value(QStringLiteral("font")).toStringList();
    return font.isEmpty() ? QStringLiteral("Noto Sans") : font.first();
}

}

int main()
{
    limitResources();
    keepFromDesktop();
    qInstallMessageHandler(ignoreMessage);
    // The helper is useless without the program that started it.
    prctl(PR_SET_PDEATHSIG, SIGKILL);

    std::string const input(std::istreambuf_iterator<char>(std::cin), {});
    auto const drawing = decodeDrawing(input);
    if (!drawing)
        return EXIT_FAILURE;
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString const title = decoder(QByteArrayView(drawing->title));
    if (decoder.hasError())
        return EXIT_FAILURE;

    std::array<char, 17> name { "usage-meter-draw" };
    std::array<char, 10> option { "-platform" };
    std::array<char, 10> platform { "offscreen" };
    std::array<char*, 4> arguments { name.data(), option.data(), platform.data(), nullptr };
    int count = static_cast<int>(arguments.size()) - 1;
    QGuiApplication const application(count, arguments.data());
    if (qEnvironmentVariable("XDG_CURRENT_DESKTOP") == QLatin1String("KDE"))
        QGuiApplication::setFont(plasmasFont());
    std::cout << encode(statusPixmaps(title, drawing->look)) << std::flush;
    return std::cout ? EXIT_SUCCESS : EXIT_FAILURE;
}
