// SPDX-License-Identifier: MIT
// Draws the status icon for many titles at a panel's usual sizes, on light, grey and dark panels: usage-meter-icons
// FILE
#include "draw/StatusIcon.h"

#include <QGuiApplication>
#include <QPainter>

#include <array>

namespace {

constexpr std::array sizes { 16, 22, 24, 32, 48 };
constexpr int gap = 6;
constexpr std::array grounds { Qt::white, Qt::gray, Qt::black };

QStringList titles()
{
    return { QStringLiteral("57.3GB"), QStringLiteral("1.05TB"), QStringLiteral("999.9MB"), QStringLiteral("0GB"),
        QStringLiteral("-12.5GB"), QStringLiteral("57%"), QStringLiteral("57,3\u00A0Go"),
        QStringLiteral("1\u202F234,5\u00A0Go"), QStringLiteral("No data"), QStringLiteral("Unlimited"),
        QStringLiteral("Pas de données"), QStringLiteral("Illimité"), QStringLiteral("…"), QStringLiteral("Error") };
}

// Draws a row of icons with one of each size, centred vertically.
void drawRow(QPainter& painter, QString const& title, QPoint place)
{
    for (int const size : sizes) {
        painter.drawImage(place.x(), place.y() + (sizes.back() - size) / 2, drawStatusIcon(title, size));
        place.rx() += size + gap;
    }
}

int rowWidth()
{
    int width = gap;
    for (int const size : sizes)
        width += size + gap;
    return width;
}

QImage drawSheet()
{
    constexpr int rowHeight = sizes.back() + gap;
    auto const rows = titles();
    QImage sheet(rowWidth() * static_cast<int>(grounds.size()), rowHeight * static_cast<int>(rows.size()) + gap,
        QImage::Format_RGB32);
    QPainter painter(&sheet);
    int left = 0;
    for (auto const ground : grounds) {
        painter.fillRect(left, 0, rowWidth(), sheet.height(), ground);
        QPoint place(left + gap, gap);
        for (auto const& title : rows) {
            drawRow(painter, title, place);
            place.ry() += rowHeight;
        }
        left += rowWidth();
    }
    return sheet;
}

}

int main(int argc, char** argv)
{
    QGuiApplication const application(argc, argv);
    return argc == 2 && drawSheet().save(QString::fromLocal8Bit(argv[1])) ? 0 : 1;
}
