// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QWidget>

/// A bar that fills up to a maximum, with marks where its warning and its critical zone begin. A zone changes the bar's
/// pattern too, not its colour alone. Assistive technologies find a progress bar of percents that describes itself in
/// words, and hear of the changes of one main-loop turn at once.
class LevelBar final : public QWidget {
    Q_OBJECT
    Q_PROPERTY(int percentage READ percentage)

public:
    /// What the bar says of itself in each zone, with "%@" in place of the percentage.
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

    /// The value's share of the maximum; over 100 when it exceeds it.
    int percentage() const;
    /// The percentage and its zone, in words.
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
    /// How far along the bar a value lies, from 0 to 1.
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
