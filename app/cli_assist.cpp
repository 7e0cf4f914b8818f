// kolibrino-cli partial: the list the partial-call window shows for a call text.
//
//   kolibrino-cli partial FILE TEXT BAND MODE TIME
//
// One entry a line, in grid order: the cell text, a blank, "gearbeitet" or "neu".
// Called from cli.cpp's main with the model's folders set up; exit status 0, 1 when
// the log cannot be loaded, 2 on wrong use.
#include "assist/partial_call.h"
#include "core/dialogs.h"
#include "core/log_file.h"
#include "core/vb_text.h"

#include <QFileInfo>
#include <cstdio>

namespace kolibrino {

int CliPartial(Model& m, Dialogs& dialogs, const QStringList& args) {
    if (args.size() != 6) return 2;
    const QFileInfo file(args[1]);
    LoadBezirkTable(m, dialogs);
    if (!LoadLog(m, dialogs, file.absoluteFilePath())) return 1;
    if (!m.Formats.ParseTime(args[5])) {
        std::fputs("Zeit ung\xc3\xbcltig\n", stderr);
        return 2;
    }
    const PeriodRule rule(m.Formats, m.MittagsGrenze);
    const int band = int(LeadingNumber(args[3]));
    const QString mode = TrimBlanks(args[4]).toUpper();
    QString out;
    for (const PartialEntry& e :
         PartialCallSearch(m.CallIndex, m.LogRecords, args[2], band, mode, rule.OfText(args[5]), rule))
        out += e.CellText() + (e.worked ? QStringLiteral(" gearbeitet\n") : QStringLiteral(" neu\n"));
    const QByteArray b = out.toLocal8Bit();
    std::fwrite(b.constData(), 1, size_t(b.size()), stdout);
    return 0;
}

} // namespace kolibrino
