// QsoRate ("QSO-Rate"): the rate of the last 10 and 60 minutes of contest time in
// contacts per hour, the contacts of each period, and a bar chart of the contacts per
// 10 minutes across both periods, one colour per band, the present slot marked. The
// figures come from RateBook (scoring/rate.h); the window only shows them.
//
// Who calls it: InstallScoring() opens and closes it from MnQsoRate; every change of
// the log arms Timer1 through LogChanged() (the main window's grid tells of each new
// contact, edit, deletion and refill); Timer2 arms it every 20 seconds so that the
// rate and the present slot follow the clock. GUI thread only. Never fails.
#pragma once

#include "core/clock.h"
#include "core/log_model.h"
#include "scoring/rate.h"

#include <QTimer>
#include <QWidget>
#include <array>

class QAction;
class QLabel;

namespace kolibrino {

// The bar chart of the window, drawn with QPainter.
class RateChart : public QWidget {
    Q_OBJECT
public:
    explicit RateChart(QWidget* parent = nullptr);
    void SetTable(const RateTable& t);
    const RateTable& Table() const { return table_; }
    // Colours of the bars, 40 m, 80 m, 30 m, other bands.
    static QColor BandColour(int band);
    QSize sizeHint() const override { return {780, 360}; }
    QSize minimumSizeHint() const override { return {560, 240}; }
    // The rectangle of a slot's bar area (whole height of the plot).
    QRectF SlotRect(int slot) const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRectF Plot() const;
    int Scale() const;
    RateTable table_;
};

class QsoRate : public QWidget {
    Q_OBJECT
public:
    QsoRate(Model& m, const TimeSource& clock, QAction* menuEntry, QWidget* parent = nullptr);

    // Position, then the open flag; arms Timer1 for the first fill.
    void Load();
    // The log changed: `appended` when contacts were only added behind the last one,
    // so that only those are read; anything else reads the whole log again.
    void LogChanged(bool appended);
    QTimer& Timer1() { return timer1_; }
    void Timer1Tick();
    QTimer& Timer2() { return timer2_; }
    void Timer2Tick() { timer1_.start(); }

    const RateTable& Shown() const { return chart_->Table(); }
    RateChart* Chart() const { return chart_; }
    QString LabelText(const QString& objectName) const;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    Model& m_;
    const TimeSource& clock_;
    QAction* menuEntry_;
    QTimer timer1_;
    QTimer timer2_;
    RateBook book_;
    bool readAll_ = true;
    RateChart* chart_ = nullptr;
    std::array<QLabel*, 5> values_{};
};

} // namespace kolibrino
