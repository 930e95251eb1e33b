#include "calibration/analog_journal.h"

#include "model/range_tables.h"
#include "platform/text.h"
#include "session/journal.h"
#include "session/state.h"

#include <set>
#include <vector>

namespace ombrix {
namespace {

// Points whose words this visit has written.
std::set<int> writtenPoints;
std::string writtenIn;

bool IsAsFound(int point)
{
    if (writtenIn != CurrentVisit()) {
        writtenIn = CurrentVisit();
        writtenPoints.clear();
    }
    return writtenPoints.insert(point).second;
}

std::string AddressText(int point)
{
    return HexText(AnalogWordAddress(point, SessionMeterKind == kCtr), 2);
}

std::string WordOf(int point)
{
    return HexText(analog.words[static_cast<std::size_t>(point)], 4);
}

void RecordWith(std::string_view kind, int point, const JournalFields &more)
{
    const int position = PositionOfAnalogPoint(point);
    JournalFields fields = {{"step", StepName(StepIdAtPosition(position))},
                            {"board", BoardName(kAn)},
                            {"position", position},
                            {"word", AddressText(point)},
                            {"point", AnalogWordName(point)}};
    fields.insert(fields.end(), more.begin(), more.end());
    Record(kind, fields);
}

std::string TextOf(WordsHeld held)
{
    return held == WordsHeld::Yes ? "held" : held == WordsHeld::No ? "other words" : "no answer";
}

// Of the groups that were restored: what was accepted of them no longer stands in the meter.
void RecordWordsWritten()
{
    std::vector<std::string> addresses;
    for (const AnalogGroup &group : kAnalogGroups)
        for (int i = 0; i < group.count && AnalogGroupDone(group); ++i)
            addresses.push_back(AddressText(group.point - i));
    Record("words written", {{"words", addresses}});
}

}  // namespace

void RecordAnalogOpened(int point)
{
    RecordWith("step opened", point,
               {{"found", WordOf(point)},
                {"target", AnalogTarget(point, AnalogCurrentPoint())},
                {"value", AnalogOutputValue(point, AnalogCurrentPoint(), SessionMeterKind == kCtr)}});
}

void RecordAnalogRound(int point, const AnalogRound &round)
{
    RecordWith("round", point,
               {{"round", round.number},
                {"target", AnalogTarget(point, AnalogCurrentPoint())},
                {"before", std::vector{round.typed}},
                {"wordBefore", HexText(round.before, 4)},
                {"wordAfter", HexText(round.word, 4)},
                {"limited", round.limited},
                {"asFound", IsAsFound(point)}});
}

void RecordAnalogEnded(int point, const std::string &how, const std::string &typed, float error)
{
    RecordWith("step ended", point,
               {{"how", how},
                {"stays", WordOf(point)},
                {"reading", std::vector{typed}},
                {"error", RoundHalfEven(static_cast<double>(error))}});
}

void RecordAnalogWords(const std::string &how, const std::string &imageBefore, WordsHeld held)
{
    std::vector<std::string> words;
    words.reserve(kAnalogWords);
    for (int point = 0; point < kAnalogWords; ++point)
        words.push_back(AnalogWordName(point) + "=" + WordOf(point));
    Record("analog words", {{"how", how},
                            {"imageBefore", imageBefore},
                            {"image", analog.image},
                            {"dacType", analog.dacType},
                            {"words", words},
                            {"readBack", TextOf(held)}});
    if (how == "restored")
        RecordWordsWritten();
}

void RecordAnalogGivenBack(GivenBack given)
{
    const char *const kTexts[] = {"given back", "no answer", "another meter", "not taken"};
    Record("analog settings", {{"words", AnalogSettingsNames()}, {"how", kTexts[static_cast<int>(given)]}});
}

WordsHeld RestoreForDac()
{
    const ScopedFlag bipolar(analog.bipolarDone, analog.bipolarDone || analog.dacType == kDacBipolar);
    const ScopedFlag dual(analog.dualDone, analog.dualDone || analog.dacType == kDacDual);
    RestoreAnalogWords();
    const WordsHeld held = CheckAnalogWords();
    RecordAnalogWords("restored", analog.image, held);
    return held;
}

}  // namespace ombrix
