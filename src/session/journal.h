// What happened at this station, one line for each event, in a file a month: Journal/2026-11.jsonl in its folder.
//
// An event is on file when its procedure returns, or it waits in memory until the file can be written again; then the
// status line says "not recorded". Recording never waits for the disk, asks nobody and throws nothing, so what is
// calibrated is the same with it and without it. Where two programs work in one folder each goes on behind what the other
// wrote.
//
// Kinds that the journal itself records: "start" (folder, pid), "no goodbye" (seq, utc and kind of the last event of a
// run that did not end cleanly), "end", "visit" and "lost" (count, first, last: events that found no room in memory).
#pragma once

#include "session/journal_line.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace ombrix {

/// What waits in memory while the file can't be written holds no more than this, in bytes of its lines.
constexpr std::size_t kJournalMemory = std::size_t{4} << 20;

/// What a program that opens a journal knows of the run before from elsewhere.
struct RunBefore {
    bool isOver = true;          ///< false: another program may work in the folder, and its run goes on
    std::int64_t goodbyeMs = 0;  ///< when a run here said goodbye last, since 1970; 0: nobody knows
};
/// Program start: goes on where the journal of this folder ends, and records the start. One that is still open is left
/// as it stands, without its end.
void OpenJournal(const std::string &folder, const std::string &station, const std::string &version,
                 const RunBefore &before = {});
/// Whether the run before the last OpenJournal ended in another way than by CloseJournal, or by one that could not be
/// recorded and was not known from elsewhere. False where it can't be known.
bool LastRunEndedWithoutGoodbye();
/// Program end: records it and closes the journal. Returns how many events could not be recorded and are gone now.
std::size_t CloseJournal();

/// One event, with the fields in the order in which they are to be read; each name once. Does nothing while no journal
/// is open.
void Record(std::string_view kind, const JournalFields &fields);

/// A meter has come to the station: from now on events belong to its visit. Records it with what is known of the meter.
void OpenVisit(const JournalFields &meter);
/// The visit's UUID; "" before the first of a program run.
std::string CurrentVisit();

/// Told each event when it is on file, never before, in order. A fault in a listener ends at FaultOutlet, later.
using JournalListener = std::function<void(const JournalEvent &event)>;
/// Adds one; all of them are told. The number is for StopListening. Listeners outlive an open journal.
int ListenToJournal(JournalListener listener);
void StopListening(int number);

/// True while events wait in memory because the file could not be written, or were lost there.
bool JournalIsBehind();

/// For tests that compare: switched off, nothing is recorded, opened or told.
void UseJournal(bool on);

/// For tests: the system's clock as the journal sees it, in milliseconds since 1970; nullptr brings the real one back.
void UseWallClock(std::function<std::int64_t()> clock);

}  // namespace ombrix
