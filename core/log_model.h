// The log in memory: every value the windows share.
//
// One Model is owned by the application (tests make their own). Windows and logic
// read and write its members directly; the functions in log_file.h, call_index.h and
// tallies.h keep its four views of the log in step: LogRecords, CallIndex, LogText and
// the file on disk.
//
// Window thread only; nothing here is synchronised.
#pragma once

#include "core/locale_fmt.h"

#include <QString>
#include <QTime>
#include <array>
#include <memory>
#include <vector>

namespace kolibrino {

class LogLock; // core/log_lock.h

// The write lock of the open log (core/log_lock.h), as a model holds it. A copy of a
// model is no writer: it starts without the lock, and an assignment keeps the lock the
// model already holds.
class WriteLockRef {
public:
    WriteLockRef() = default;
    WriteLockRef(const WriteLockRef&) noexcept {}
    WriteLockRef& operator=(const WriteLockRef&) noexcept { return *this; }
    WriteLockRef(WriteLockRef&&) noexcept = default;
    WriteLockRef& operator=(WriteLockRef&&) noexcept = default;
    WriteLockRef& operator=(std::shared_ptr<LogLock> lock) noexcept {
        lock_ = std::move(lock);
        return *this;
    }
    LogLock* operator->() const { return lock_.get(); }
    explicit operator bool() const { return bool(lock_); }
    void reset() { lock_.reset(); }

private:
    std::shared_ptr<LogLock> lock_;
};

// Bands as stored in records, and the order of the band box.
inline constexpr int kBand40 = 40;
inline constexpr int kBand80 = 80;
inline constexpr int kBand30 = 30;
inline const char* const kBandNames[3] = {"40m", "80m", "30m"};
inline const char* const kModeNames[2] = {"SSB", "CW"};
// Column of a band in every band-wise counter; -1 for a band the contest does not know.
int BandColumn(int band);
// Band of a band box list index (0 40 m, 1 80 m, 2 30 m); 0 for any other.
int BandOfListIndex(int listIndex);
// Frequency in kHz a band box list index stands for when no rig is used.
float DefaultFrequency(int listIndex);

// A two-character fixed text: cut to two, padded with blanks.
QString Fixed2(const QString& text);

namespace Status {
inline constexpr int Normal = 0;
inline constexpr int Dupe = 1;
inline constexpr int Deleted = -1;
} // namespace Status

struct QsoRecord {
    QString Call;
    int Band = 0;
    QString Bezirk = QStringLiteral("  ");
    QString Datum;
    QString Zeit;
    QString RstGesendet;
    QString RstEmpfangen;
    int Qsl = 0;
    QString Mode;
    QString ModeRx;
    int Status = Status::Normal;
    QString Operator;
    QString Bemerkung;
    QString BandRx;
    float Frequenz = 0;
    float FrequenzRx = 0;
    float LaufNr = 0; // not in the file
    QString Reserve1;
    QString Reserve2;
    QString Reserve3;
};

struct LogHeader {
    QString MYCALL;
    QString MYLOCATOR;
    QString MYBZ = QStringLiteral("  "); // two characters, fixed
    int MYOMYL = 0;
    QString MYOPCALL;
    QString MYOPNAME;
    QString MYADRESS;
    QString MYPLZ;
    QString MYCITY;
    QString MYEMAIL;
    int MYWERTUNGSST = 0;
    int MYPWR = 0;
    QString MYSTATION;
    QString MYKOMMENT;
    QString MYEXAMDAT; // "00" sep "00" sep "2000" by default, see DefaultHeader()
    int MYOPKLASS = 0;
    int MYNPOWER = 0;
};

struct BezirkRecord {
    QString Code; // two characters
    int X = 0;
    int Y = 0;
    QString Name;
    int Gruppe = 0;
    int AnzGesamt = 0;
    int Anz40 = 0;
    int Anz80 = 0;
    int Anz30 = 0;
};

struct StaatsfunkRecord {
    QString Prefix; // first three characters of the call
    int Anz80 = 0;
    int Anz30 = 0;
};

// Companion windows that are open; callers test the flag before they touch one.
struct OpenWindows {
    bool BZKarte = false;
    bool GridKarte = false;
    bool Frequenz = false;
    bool Statistik = false;
    bool Transceiver = false;
    bool LogTracker = false;
    bool DBLog = false;
    bool QsoRate = false;       // "QSO-Rate"
    bool FehlendeMulti = false; // "Fehlende Multiplikatoren"
};

struct Model {
    // Folders (each with its trailing "/") and the settings file.
    QString AppFolder;
    QString DataFolder;
    QString IniPath;
    QString LogFolder;
    QString BackupFolder;
    QString TmpFolder;
    QString ExtraBackupPath;

    // The open log.
    QString CurrentLogName; // file name inside LogFolder, with ".KOLBO"
    LogHeader Header;
    std::vector<QsoRecord> LogRecords; // empty: the log has no contacts
    QString LogText;
    QString CallIndex = QStringLiteral("\u00B6");
    // The write lock of the open log while this program may write it (core/log_lock.h).
    WriteLockRef WriteLock;

    // Tallies, rebuilt from the records by RebuildTallies().
    // Counters are wider than 16 bits so that test logs of any size never overflow.
    double QsoCount = 0;
    int DupeCount = 0;
    std::array<std::array<int, 3>, 2> ModeBandCount{};   // SSB, CW x 40, 80, 30
    std::array<std::array<int, 3>, 4> PeriodBandCount{}; // SSB am, SSB pm, CW am, CW pm
    std::array<std::array<int, 3>, 9> GruppeBandCount{}; // Gruppe 1..9 at rows 0..8
    std::vector<StaatsfunkRecord> StaatsfunkRecords;

    // The district table; element 0 stays empty.
    std::vector<BezirkRecord> BezirkRecords;
    QString BezirkIndex;

    // Time and locale.
    QTime MittagsGrenze = QTime(12, 0);
    LocaleFormats Formats;
    QChar TimeSeparator = QLatin1Char(':');
    QChar DateSeparator = QLatin1Char('.');
    int ZeitOffset = 0; // hours added to the computer's clock

    // Shared flags (0 or -1 in the settings; bool here).
    bool LogChanged = false;
    bool IsStaatsfunkstelle = false;
    bool MainWindowLoaded = false;
    OpenWindows Open;

    // Takes the separators from a locale's formatted date and time.
    void SetLocale(const QLocale& locale);
};

// The header of a fresh log, with the separators of the model.
LogHeader DefaultHeader(const Model& m);

// Program title and version as the log file and the settings write them.
QString ProgramTitle();
QString ProgramVersionText(); // "1.0.0"
int ProgramVersionNumber();   // major 2 digits, minor 2 digits, revision 3 digits

} // namespace kolibrino
