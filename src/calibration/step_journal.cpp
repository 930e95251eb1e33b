#include "calibration/step_journal.h"

#include "calibration/step_context.h"
#include "links/calibrator_line.h"
#include "links/meter_protocol.h"
#include "model/range_tables.h"
#include "platform/text.h"
#include "session/journal.h"
#include "session/state.h"

#include <algorithm>
#include <set>
#include <utility>

namespace ombrix {
namespace {

// Words that this visit's rounds have written.
std::set<int> writtenWords;
std::string writtenIn;
bool writtenFirst = false;  // the round in work was the first to write its word

bool WritesFirst(int word)
{
    if (writtenIn != CurrentVisit()) {
        writtenIn = CurrentVisit();
        writtenWords.clear();
    }
    return writtenWords.insert(word).second;
}

}  // namespace

void RecordOfStep(std::string_view kind, int position, const JournalFields &more)
{
    JournalFields fields = {{"step", StepName(StepIdAtPosition(position))},
                            {"board", BoardName(SCType)},
                            {"position", position},
                            {"word", HexText(GetStepNvmWord(), 2)}};
    fields.insert(fields.end(), more.begin(), more.end());
    Record(kind, fields);
}

void NoteStepWordWritten()
{
    writtenFirst = WritesFirst(GetStepNvmWord());
}

void RecordStepOpened(int position)
{
    writtenFirst = false;
    RecordOfStep("step opened", position,
                 {{"found", GetStepWordHex()}, {"target", GetTargetCounts()}, {"value", GetCalValue()}});
}

void RecordRound(int position, const RoundRecord &round)
{
    const bool first = std::exchange(writtenFirst, false);
    JournalFields fields = {
        {"round", round.number},      {"target", GetTargetCounts()}, {"asked", round.asked},
        {"reported", round.reported}, {"before", round.before},      {"wordBefore", round.wordBefore},
        {"wordAfter", round.word},    {"limited", round.limited},    {"reading", round.reading}};
    if (std::find(round.reading.begin(), round.reading.end(), "") == round.reading.end())
        fields.emplace_back("error", round.error);
    fields.emplace_back("asFound", WritesFirst(GetStepNvmWord()) || first);
    RecordOfStep("round", position, fields);
}

std::string HowEnded(Ended ended)
{
    if (ended == Ended::Fault)
        return "fault";
    return MeterLineIsGone() || CalibratorLineIsGone() ? "line lost" : "stopped";
}

void RecordStepEnded(int position, const StepEnd &end)
{
    writtenFirst = false;
    JournalFields more = {{"how", end.how}, {"stays", end.word}};
    if (!end.reading.empty())
        more.insert(more.end(), {{"reading", end.reading}, {"error", end.error}});
    RecordOfStep("step ended", position, more);
}

}  // namespace ombrix
