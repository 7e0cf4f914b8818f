#include "export/busy_panel.h"

#include <QDialog>
#include <QEventLoop>
#include <QLabel>
#include <QPointer>
#include <QVBoxLayout>
#include <thread>

namespace kolibrino::exporting {

void RunBeside(QWidget* window, const QString& text, const std::function<void()>& work) {
    QDialog panel(window, Qt::Dialog | Qt::FramelessWindowHint);
    panel.setObjectName(QStringLiteral("Picture10"));
    panel.setWindowModality(Qt::ApplicationModal);
    auto* layout = new QVBoxLayout(&panel);
    auto* label = new QLabel(text, &panel);
    label->setObjectName(QStringLiteral("Label22"));
    label->setAlignment(Qt::AlignCenter);
    layout->addWidget(label);
    panel.resize(260, 70);
    panel.show();
    panel.repaint();

    QEventLoop loop;
    std::thread worker([&] {
        work();
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    worker.join();
    panel.hide();
}

} // namespace kolibrino::exporting
