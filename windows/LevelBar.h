// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QWidget>

/// A bar that fills up to a maximum, with marks where its warning and critical zones begin. A zone changes the bar's
/// pattern as well as its colour. Assistive technologies see a progress bar in percent with a description in words, and
/// are notified once of all changes in one main-loop turn.
class LevelBar final : public QWidget {
    Q_OBJECT
    Q_PROPERTY(int percentage READ percentage)

public:
    /// The bar's accessible descriptions in each zone, with "%@" in place of the percentage.
    struct Descriptions {
        QString normal;
        QString warning;
        QString critical;
    };

    explicit LevelBar(QWidget* parent = nullptr);

    void setMaximum(double maximum);
    void setValue(double value);
    void setWarningValue(double value);
    void setCriticalValue(double value);
    void setDescriptions(Descriptions descriptions);

    /// The value as a percentage of the maximum; may exceed 100.
    int percentage() const;
    /// The percentage and the zone in words.
    QString description() const;

    QSize sizeHint() const override { return { 220, 20 }; }
    QSize minimumSizeHint() const override { return { 80, 20 }; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Zone {
        QColor color;
        Qt::BrushStyle pattern;
        QString description;
    };

    void set(double& field, double value);
    Zone zone() const;
    /// The position of a value along the bar, from 0 to 1.
    double share(double value) const;
    void requestAnnouncement();
    void announce();

    double maximum_ = 1;
    double value_ = 0;
    double warningValue_ = 1;
    double criticalValue_ = 1;
    Descriptions descriptions_;
    QString announced_;
    bool isAnnouncing_ = false;
};
