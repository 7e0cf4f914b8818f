// One libFuzzer target; KOLIBRINO_FUZZ_ENTRY names its entry function (fuzz_entries.h).
// Built only with clang and -fsanitize=fuzzer (tools/dev.sh fuzz).
#include "fuzz_entries.h"

#include <QLocale>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Austria));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const kolibrino::fuzz::Entry entry = kolibrino::fuzz::EntryByName(KOLIBRINO_FUZZ_ENTRY);
    entry(data, size);
    return 0;
}
