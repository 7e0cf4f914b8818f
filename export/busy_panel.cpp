#include "export/busy_panel.h"

#include <QDeadlineTimer>
#include <QDialog>
#include <QEventLoop>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>
#include <thread>
#include <vector>

namespace kolibrino::exporting {

// The panel itself: Escape and the window's close never take it away while work runs;
// with a cancel button they press it.
class BusyPanelWindow : public QDialog {
public:
    explicit BusyPanelWindow(QWidget* window) : QDialog(window, Qt::Dialog | Qt::FramelessWindowHint) {
        setObjectName(QStringLiteral("Picture10"));
        setWindowModality(Qt::ApplicationModal);
        auto* layout = new QVBoxLayout(this);
        label22 = new QLabel(this);
        label22->setObjectName(QStringLiteral("Label22"));
        label22->setAlignment(Qt::AlignCenter);
        layout->addWidget(label22);
        label23 = new QLabel(this);
        label23->setObjectName(QStringLiteral("Label23"));
        label23->setAlignment(Qt::AlignCenter);
        label23->hide();
        layout->addWidget(label23);
        command1 = new QPushButton(QString::fromLatin1(kTxtAbbrechen), this);
        command1->setObjectName(QStringLiteral("Command1"));
        command1->setAutoDefault(false);
        command1->hide();
        layout->addWidget(command1, 0, Qt::AlignHCenter);
        resize(280, 70);
    }
    void reject() override {
        if (command1->isVisible()) command1->click();
    }

    QLabel* label22 = nullptr;
    QLabel* label23 = nullptr;
    QPushButton* command1 = nullptr;
};

namespace {

QString CountdownText(qint64 leftMs) {
    return QStringLiteral("Wartet noch höchstens %1 s").arg((std::max<qint64>(0, leftMs) + 999) / 1000);
}

} // namespace

BusyPanel::BusyPanel(QWidget* window) : panel_(std::make_unique<BusyPanelWindow>(window)) {}

BusyPanel::~BusyPanel() = default;

void BusyPanel::Show(const QString& text) {
    panel_->label22->setText(text);
    panel_->show();
    panel_->raise();
    panel_->repaint();
}

void BusyPanel::Hide() {
    panel_->hide();
}

bool BusyPanel::Run(const std::function<void()>& work, long limitMs, std::atomic<bool>* cancel) {
    BusyPanelWindow& p = *panel_;
    if (!p.isVisible()) Show(p.label22->text());
    bool cancelled = false;
    QMetaObject::Connection click;
    if (cancel) {
        click = QObject::connect(p.command1, &QPushButton::clicked, &p, [&] {
            cancelled = true;
            cancel->store(true);
            p.command1->setEnabled(false);
        });
        p.command1->setEnabled(true);
        p.command1->show();
    }
    const QDeadlineTimer deadline =
        limitMs > 0 ? QDeadlineTimer(qint64(limitMs)) : QDeadlineTimer(QDeadlineTimer::Forever);
    QTimer tick;
    if (limitMs > 0) {
        p.label23->setText(CountdownText(deadline.remainingTime()));
        p.label23->show();
        QObject::connect(&tick, &QTimer::timeout, &p,
                         [&] { p.label23->setText(CountdownText(deadline.remainingTime())); });
        tick.start(250);
    }
    p.adjustSize();
    p.repaint();

    QEventLoop loop;
    std::thread worker([&] {
        work();
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    // With a cancel button the operator must be able to press it; the modal panel keeps
    // every other window from input.
    loop.exec(cancel ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents);
    worker.join();
    tick.stop();
    if (cancel) {
        QObject::disconnect(click);
        p.command1->hide();
    }
    p.label23->hide();
    return !cancelled;
}

void RunBeside(QWidget* window, const QString& text, const std::function<void()>& work) {
    BusyPanel panel(window);
    panel.Show(text);
    panel.Run(work);
    panel.Hide();
}

namespace {

struct Waiting {
    QPointer<QObject> context;
    QString key;
    std::function<void()> action;
};

int& JobsRunning() {
    static int running = 0;
    return running;
}

std::vector<Waiting>& Queue() {
    static std::vector<Waiting> queue;
    return queue;
}

} // namespace

NetworkJob::NetworkJob() {
    ++JobsRunning();
}

NetworkJob::~NetworkJob() {
    if (--JobsRunning() > 0) return;
    std::vector<Waiting> due;
    due.swap(Queue());
    for (Waiting& w : due) {
        if (!w.context) continue;
        // After the job's own stack has unwound, so the action starts on a clean slate.
        QTimer::singleShot(0, w.context.data(), [context = w.context, key = w.key, action = w.action] {
            // A window that has closed meanwhile (the program ends after an update) asks nothing.
            const auto* window = qobject_cast<const QWidget*>(context.data());
            if (!context || (window && !window->isVisible())) return;
            RunWhenIdle(context.data(), key, action);
        });
    }
}

bool NetworkJob::Running() {
    return JobsRunning() > 0;
}

void RunWhenIdle(QObject* context, const QString& key, std::function<void()> action) {
    if (!NetworkJob::Running()) {
        action();
        return;
    }
    for (const Waiting& w : Queue())
        if (w.context == context && w.key == key) return;
    Queue().push_back({context, key, std::move(action)});
}

} // namespace kolibrino::exporting
