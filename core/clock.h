// The one source of "now" for the whole program.
//
// The windows and the logic never ask the system clock themselves; they ask a
// TimeSource, so tests can set the time. ContestNow() is the computer's time moved by
// the operator's offset in whole hours.
//
// Window thread only (the fixed source is not synchronised). Never fails.
#pragma once

#include <QDateTime>

namespace kolibrino {

class TimeSource {
public:
    virtual ~TimeSource() = default;
    virtual QDateTime Now() const = 0;
};

class SystemTimeSource final : public TimeSource {
public:
    QDateTime Now() const override { return QDateTime::currentDateTime(); }
};

// A clock that stands still until the test moves it.
class FixedTimeSource final : public TimeSource {
public:
    explicit FixedTimeSource(QDateTime t) : now_(std::move(t)) {}
    QDateTime Now() const override { return now_; }
    void Set(const QDateTime& t) { now_ = t; }
    void AdvanceSeconds(qint64 s) { now_ = now_.addSecs(s); }

private:
    QDateTime now_;
};

inline QDateTime ContestNow(const TimeSource& clock, int zeitOffsetHours) {
    return clock.Now().addSecs(qint64(zeitOffsetHours) * 3600);
}

} // namespace kolibrino
