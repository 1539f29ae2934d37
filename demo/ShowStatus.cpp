// SPDX-License-Identifier: MIT
// Prints the program's status item as a panel would show it, or clicks one of its lines.
#include "demo/StatusReader.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <chrono>
#include <cstdio>

namespace {

void print(std::vector<StatusLine> const& lines, int depth)
{
    for (auto const& line : lines) {
        auto const indent = QString(qsizetype { depth } * 4, QLatin1Char(' '));
        auto const text = line.isSeparator ? QStringLiteral("--------") : line.text;
        auto const mark = line.isChecked ? QStringLiteral("* ") : QString();
        std::puts(qPrintable(indent + mark + text));
        print(line.submenu, depth + 1);
    }
}

int fail(QString const& reason)
{
    std::fputs(qPrintable(QStringLiteral("usage-meter-status: %1\n").arg(reason)), stderr);
    return 1;
}

}

int main(int argc, char** argv)
{
    QCoreApplication const application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Shows or clicks Usage Meter's status item."));
    parser.addHelpOption();
    QCommandLineOption const timeout(QStringLiteral("timeout"), QStringLiteral("How long to wait."),
        QStringLiteral("seconds"), QStringLiteral("10"));
    QCommandLineOption const unwanted(
        QStringLiteral("not"), QStringLiteral("Waits for another title than this one."), QStringLiteral("text"));
    QCommandLineOption const click(
        QStringLiteral("click"), QStringLiteral("Clicks the line with this text."), QStringLiteral("text"));
    parser.addOptions({ timeout, unwanted, click });
    parser.process(application);

    auto const bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return fail(QStringLiteral("there is no session bus"));
    bool isNumber = false;
    double const seconds = parser.value(timeout).toDouble(&isNumber);
    if (!isNumber || seconds < 0)
        return fail(QStringLiteral("the timeout is no number of seconds"));
    auto const bound = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::duration<double>(seconds));

    StatusReader reader(bus);
    bool const found = reader.waitFor(
        [&] { return reader.hasItem() && !(parser.isSet(unwanted) && reader.title() == parser.value(unwanted)); },
        bound);
    if (!found && reader.hasItem())
        return fail(QStringLiteral("the title is still \"%1\"").arg(reader.title()));
    if (!found)
        return fail(QStringLiteral("there is no status item"));
    if (parser.isSet(click)) {
        if (!reader.click(parser.value(click), bound))
            return fail(QStringLiteral("no line \"%1\" could be clicked").arg(parser.value(click)));
        return 0;
    }
    // The menu may have been read before the title.
    if (!reader.readMenuNow(bound))
        return fail(QStringLiteral("the menu cannot be read"));
    std::puts(qPrintable(QStringLiteral("Title: ") + reader.title()));
    print(reader.lines(), 0);
    return 0;
}
