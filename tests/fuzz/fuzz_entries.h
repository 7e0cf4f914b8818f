// The entry functions of the fuzz targets. Each takes one input as bytes, runs it
// through a parser of the program the way the program runs it, checks what must hold
// afterwards and aborts (through Q_ASSERT_X's release twin, qFatal) when it does not.
//
// Called by the libFuzzer targets (fuzz_target.cpp, clang only) and by the normal test
// suite, which replays the committed corpus and every crash input (tst_fuzz_replay).
// Any thread, one input at a time per thread. A crash or a qFatal is the finding.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kolibrino::fuzz {

// A log file's bytes through the loader; a loaded log rebuilds and loads again alike.
void LogLoader(const uint8_t* data, size_t size);
// A district table's bytes through the reader; every code read is found again.
void DistrictTable(const uint8_t* data, size_t size);
// A settings file's bytes through the reader, and a write into it read back.
void IniReader(const uint8_t* data, size_t size);
// A call index (and the call sought) through the dupe look-up and the entry parser.
void CallIndexLookup(const uint8_t* data, size_t size);
// A foreign Cabrillo file's bytes through the check before the upload; the answer is
// nothing or one of its messages, whatever the case of the text.
void CabrilloCheck(const uint8_t* data, size_t size);
// The local MD5 (up to the first line feed) and the log server's reply page through
// the judge of the echo; a well-formed page with the right digest always passes.
void UploadReply(const uint8_t* data, size_t size);
// An update list's bytes through the list parser; each entry written back reads the
// same, and its installed version reads back from the settings.
void UpdateList(const uint8_t* data, size_t size);

// The targets by name, for the replay and the command line: nullptr when unknown.
using Entry = void (*)(const uint8_t*, size_t);
Entry EntryByName(const char* name);

} // namespace kolibrino::fuzz
