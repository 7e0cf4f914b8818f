#include <QtTest>
class TestMainWindowClock : public QObject { Q_OBJECT };
QTEST_MAIN(TestMainWindowClock)
#include "tst_main_window_clock.moc"
