#include "scoring/qso_rate.h"

#include "ui/window_support.h"

#include <QAction>
#include <QCloseEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>

namespace kolibrino {

namespace {

constexpr int kGapSlots = 2; // room between the two periods, in slot widths
constexpr int kRefreshMs = 20000;

QFont Sized(QFont f, double points, bool bold) {
    f.setPointSizeF(points);
    f.setBold(bold);
    return f;
}

} // namespace

RateChart::RateChart(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("Picture1"));
    setAutoFillBackground(true);
    QPalette p = palette();
    p.setColor(QPalette::Window, Qt::white);
    setPalette(p);
}

void RateChart::SetTable(const RateTable& t) {
    table_ = t;
    update();
}

QColor RateChart::BandColour(int band) {
    // Blue, orange and green that stay apart for colour-blind eyes too; grey for others.
    static const QRgb colours[kRateBands] = {qRgb(0, 114, 178), qRgb(230, 159, 0), qRgb(0, 158, 115),
                                             qRgb(150, 150, 150)};
    return QColor(colours[std::clamp(band, 0, kRateBands - 1)]);
}

QRectF RateChart::Plot() const {
    return QRectF(48, 56, std::max(10, width() - 48 - 14), std::max(10, height() - 56 - 48));
}

QRectF RateChart::SlotRect(int slot) const {
    const QRectF plot = Plot();
    const double unit = plot.width() / (kRateSlots + kGapSlots);
    const int place = slot + (slot >= kSlotsPerPeriod ? kGapSlots : 0);
    return QRectF(plot.left() + place * unit, plot.top(), unit, plot.height());
}

// The top of the scale: a round number at or above the highest bar, at least 5.
int RateChart::Scale() const {
    const int highest = std::max(5, *std::max_element(table_.perSlot.begin(), table_.perSlot.end()));
    for (const int step : {1, 2, 5, 10, 20, 50, 100, 200, 500, 1000, 2000, 5000}) {
        if (highest <= step * 5) return (highest + step - 1) / step * step;
    }
    return highest;
}

void RateChart::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF plot = Plot();
    const int top = Scale();
    const double perContact = plot.height() / top;
    const QFont small = Sized(font(), 10, false);
    const QFont bold = Sized(font(), 11, true);

    // The present slot behind everything.
    if (table_.present >= 0) {
        const QRectF r = SlotRect(table_.present);
        p.fillRect(r, QColor(255, 236, 140));
        p.setPen(QPen(QColor(200, 0, 0), 3));
        p.drawRect(r);
        p.setFont(bold);
        p.drawText(QRectF(r.center().x() - 30, plot.top() - 22, 60, 18), Qt::AlignCenter, QStringLiteral("jetzt"));
    }

    // Scale lines with their numbers.
    const int step = top <= 5 ? 1 : top / 5;
    p.setFont(small);
    for (int v = 0; v <= top; v += step) {
        const double y = plot.bottom() - v * perContact;
        p.setPen(QPen(QColor(215, 215, 215), 1));
        p.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
        p.setPen(Qt::black);
        p.drawText(QRectF(0, y - 9, plot.left() - 6, 18), Qt::AlignRight | Qt::AlignVCenter, QString::number(v));
    }

    // The bars, stacked by band, with the slot's number above.
    for (int slot = 0; slot < kRateSlots; ++slot) {
        const QRectF r = SlotRect(slot);
        const double w = r.width() * 0.78;
        const double x = r.center().x() - w / 2;
        double y = plot.bottom();
        for (int band = 0; band < kRateBands; ++band) {
            const int n = table_.perBand[size_t(band)][size_t(slot)];
            if (n <= 0) continue;
            const double h = n * perContact;
            p.fillRect(QRectF(x, y - h, w, h), BandColour(band));
            y -= h;
        }
        const int total = table_.perSlot[size_t(slot)];
        if (total > 0) {
            p.setPen(Qt::black);
            p.setFont(bold);
            p.drawText(QRectF(r.center().x() - 20, y - 20, 40, 18), Qt::AlignHCenter | Qt::AlignBottom,
                       QString::number(total));
        }
        if (slot % 3 == 0) {
            p.setPen(Qt::black);
            p.setFont(small);
            p.drawText(QRectF(r.left() - 20, plot.bottom() + 4, 60, 18), Qt::AlignHCenter | Qt::AlignTop,
                       SlotStart(slot));
        }
    }
    p.setPen(QPen(Qt::black, 1.5));
    p.drawLine(plot.bottomLeft(), plot.bottomRight());

    // Names of the periods below the times.
    p.setFont(bold);
    for (int period = 0; period < 2; ++period) {
        const QRectF first = SlotRect(period * kSlotsPerPeriod);
        const QRectF last = SlotRect(period * kSlotsPerPeriod + kSlotsPerPeriod - 1);
        p.drawText(QRectF(first.left(), plot.bottom() + 24, last.right() - first.left(), 20), Qt::AlignCenter,
                   period == 0 ? QStringLiteral("Periode 1") : QStringLiteral("Periode 2"));
    }

    // The legend: one square per band that the chart can show.
    const char* const names[kRateBands] = {"40m", "80m", "30m", "andere"};
    bool other = false;
    for (const int n : table_.perBand[kRateBands - 1])
        other = other || n > 0;
    double x = plot.left();
    for (int band = 0; band < (other ? kRateBands : kRateBands - 1); ++band) {
        p.fillRect(QRectF(x, 6, 16, 16), BandColour(band));
        p.setPen(Qt::black);
        p.drawText(QRectF(x + 22, 4, 70, 20), Qt::AlignLeft | Qt::AlignVCenter, QString::fromLatin1(names[band]));
        x += 90;
    }
}

QsoRate::QsoRate(Model& m, const TimeSource& clock, QAction* menuEntry, QWidget* parent)
    : QWidget(parent, Qt::Window), m_(m), clock_(clock), menuEntry_(menuEntry) {
    setObjectName(QStringLiteral("QsoRate"));
    setWindowTitle(QStringLiteral("QSO-Rate"));
    setAttribute(Qt::WA_DeleteOnClose);
    timer1_.setSingleShot(true);
    timer1_.setInterval(0);
    connect(&timer1_, &QTimer::timeout, this, &QsoRate::Timer1Tick);
    timer2_.setInterval(kRefreshMs);
    connect(&timer2_, &QTimer::timeout, this, &QsoRate::Timer2Tick);

    auto* layout = new QVBoxLayout(this);
    auto* figures = new QGridLayout;
    const char* const captions[5] = {"Rate letzte 10 Minuten\n(QSOs pro Stunde)",
                                     "Rate letzte 60 Minuten\n(QSOs pro Stunde)", "QSOs Periode 1\n(05:00 - 08:00)",
                                     "QSOs Periode 2\n(14:00 - 17:00)", "außerhalb\nder Perioden"};
    for (int i = 0; i < 5; ++i) {
        auto* caption = new QLabel(QString::fromUtf8(captions[i]));
        caption->setObjectName(QStringLiteral("Label%1").arg(i + 6));
        caption->setAlignment(Qt::AlignCenter);
        auto* value = new QLabel(QStringLiteral("0"));
        value->setObjectName(QStringLiteral("Label%1").arg(i + 1));
        value->setAlignment(Qt::AlignCenter);
        value->setFont(Sized(font(), i < 4 ? 30 : 18, true));
        values_[size_t(i)] = value;
        figures->addWidget(caption, 0, i);
        figures->addWidget(value, 1, i);
    }
    layout->addLayout(figures);
    chart_ = new RateChart;
    layout->addWidget(chart_, 1);
    resize(820, 520);
}

void QsoRate::Load() {
    RestoreWindowPos(this, QStringLiteral("QsoRate"));
    timer1_.start();
    timer2_.start();
    SetCompanionOpen(m_, Companion::QsoRate, menuEntry_, true);
}

void QsoRate::LogChanged(bool appended) {
    if (!appended) readAll_ = true;
    timer1_.start();
}

void QsoRate::Timer1Tick() {
    if (readAll_)
        book_.Rebuild(m_);
    else
        book_.Append(m_);
    readAll_ = false;
    const RateTable t = book_.Count(ContestNow(clock_, m_.ZeitOffset));
    const int shown[5] = {t.PerHour10(), t.PerHour60(), t.period1, t.period2, t.outside};
    for (int i = 0; i < 5; ++i)
        values_[size_t(i)]->setText(QString::number(shown[i]));
    chart_->SetTable(t);
    timer1_.stop();
}

QString QsoRate::LabelText(const QString& objectName) const {
    const QLabel* l = findChild<QLabel*>(objectName);
    return l ? l->text() : QString();
}

void QsoRate::closeEvent(QCloseEvent* event) {
    SaveWindowPos(this, QStringLiteral("QsoRate"));
    timer1_.stop();
    timer2_.stop();
    SetCompanionOpen(m_, Companion::QsoRate, menuEntry_, false);
    event->accept();
}

} // namespace kolibrino
