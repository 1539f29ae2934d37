// SPDX-License-Identifier: MIT
#include "draw/StatusIcon.h"

#include <QFont>
#include <QPainter>
#include <QPainterPath>
#include <QStringList>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr std::array usualSizes { 16, 22, 24, 32, 44, 48, 64 };
constexpr int wideHeight = 48;
// A longer word is broken into two lines.
constexpr qsizetype maximumWordLength = 6;
// The share of the height that a figure gets above its unit.
constexpr double figureShare = 0.56;
// How far letters may be narrowed to make them taller.
constexpr double narrowest = 0.6;
// The plate behind white letters makes them equally legible on light and dark panels. An outline would clog small
// letters.
constexpr QColor plate(0x20, 0x22, 0x26, 235);

QFont iconFont()
{
    QFont font;
    font.setWeight(QFont::DemiBold);
    font.setPixelSize(100);
    // The glyphs are scaled, so grid fitting would distort them.
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

QPainterPath letters(QString const& text)
{
    QPainterPath path;
    path.addText(0, 0, iconFont(), text);
    return path;
}

QStringList halves(QString const& text, qsizetype end, qsizetype begin)
{
    return { text.left(end).trimmed(), text.mid(begin).trimmed() };
}

// Breaks at the space nearest to the middle.
QStringList wrapped(QString const& text)
{
    auto const middle = text.size() / 2;
    qsizetype best = -1;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at].isSpace() && (best < 0 || qAbs(at - middle) < qAbs(best - middle)))
            best = at;
    }
    if (best >= 0)
        return halves(text, best, best);
    if (text.size() <= maximumWordLength)
        return { text };
    return halves(text, (text.size() + 1) / 2, (text.size() + 1) / 2);
}

// Selects what fits into a square: a figure above its unit, a wrapped text, or just the ellipsis of a truncated text.
QStringList squareLines(QString const& title)
{
    auto const text = title.trimmed();
    if (text.isEmpty())
        return {};
    qsizetype lastDigit = text.size() - 1;
    while (lastDigit >= 0 && !text[lastDigit].isDigit())
        --lastDigit;
    if (lastDigit == text.size() - 1)
        return { text };
    if (lastDigit >= 0)
        return halves(text, lastDigit + 1, lastDigit + 1);
    if (text.endsWith(QChar(0x2026)))
        return { text.right(1) };
    return wrapped(text);
}

// One or two lines of glyph outlines, for icons of any size.
struct Lettering {
    QPainterPath upper;
    QPainterPath lower;
    double upperShare = 1;
};

Lettering letteringOf(QString const& title)
{
    auto const lines = squareLines(title);
    if (lines.size() < 2)
        return { letters(lines.value(0)), {} };
    bool const isFigure = lines[0].back().isDigit();
    return { letters(lines[0]), letters(lines[1]), isFigure ? figureShare : 0.5 };
}

// Scales the outlines to the largest size that fits the cell, and centres them.
QPainterPath fitted(QPainterPath const& path, QRectF const& cell)
{
    auto const bounds = path.boundingRect();
    if (bounds.isEmpty())
        return {};
    double const widest = cell.width() / bounds.width();
    // A whole number of pixels keeps the edges sharp.
    double const height = std::floor(std::min(cell.height(), bounds.height() * widest / narrowest));
    double const tall = height / bounds.height();
    double const top = std::floor(cell.center().y() - height / 2);
    double const wide = std::min(widest, tall);
    QTransform place;
    place.translate(cell.center().x(), top);
    place.scale(wide, tall);
    place.translate(-bounds.center().x(), -bounds.top());
    return place.map(path);
}

int marginOf(int height) { return std::max(1, height / 16); }

QImage paint(QPainterPath const& path, QSize const& size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(plate);
    double const radius = size.height() / 8.0;
    painter.drawRoundedRect(QRect({}, size), radius, radius);
    painter.fillPath(path, Qt::white);
    painter.end();
    return image.convertToFormat(QImage::Format_ARGB32);
}

QImage draw(Lettering const& lettering, int size)
{
    int const margin = marginOf(size);
    QRect const room(margin, margin, size - 2 * margin, size - 2 * margin);
    if (lettering.lower.isEmpty())
        return paint(fitted(lettering.upper, room), { size, size });

    int const upper = qRound((room.height() - margin) * lettering.upperShare);
    QRect const top(room.topLeft(), QSize(room.width(), upper));
    QRect const bottom = room.adjusted(0, upper + margin, 0, 0);
    return paint(fitted(lettering.upper, top) + fitted(lettering.lower, bottom), { size, size });
}

// Draws the title on one line of this height.
QImage drawWide(QString const& title, int height)
{
    auto const path = letters(title);
    auto const bounds = path.boundingRect();
    double const margin = height / 8.0;
    // All titles get the same size, unless a letter has a descender.
    double const figureHeight = letters(QStringLiteral("0")).boundingRect().height();
    double const scale = (height - 2 * marginOf(height)) / std::max(figureHeight, bounds.height());
    QTransform place;
    place.translate(margin, height / 2.0);
    place.scale(scale, scale);
    place.translate(-bounds.left(), -bounds.center().y());
    return paint(place.map(path), { qCeil(bounds.width() * scale + 2 * margin), height });
}

StatusPixmap encoded(QImage const& image)
{
    StatusPixmap pixmap { image.width(), image.height(),
        std::string(static_cast<std::size_t>(image.sizeInBytes()), 0) };
    qToBigEndian<quint32>(image.constBits(), qsizetype { image.width() } * image.height(), pixmap.pixels.data());
    return pixmap;
}

}

QImage drawStatusIcon(QString const& title, int size) { return draw(letteringOf(title), size); }

QList<QImage> statusImages(QString const& title, StatusLook look)
{
    if (look == StatusLook::WideIcon)
        return { drawWide(title, wideHeight) };
    if (look == StatusLook::Label)
        return {};
    auto const lettering = letteringOf(title);
    QList<QImage> images;
    for (int const size : usualSizes)
        images.push_back(draw(lettering, size));
    return images;
}

std::vector<StatusPixmap> statusPixmaps(QString const& title, StatusLook look)
{
    std::vector<StatusPixmap> pixmaps;
    for (auto const& image : statusImages(title, look))
        pixmaps.push_back(encoded(image));
    return pixmaps;
}
