#include "calibration/analog_journal.h"

#include "calibration/memory_journal.h"
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

std::string AddressText(int point)
{
    return HexText(AnalogWordAddress(point, SessionMeterKind == kCtr), 2);
}

std::string WordOf(int point)
{
    return HexText(analog.words[static_cast<std::size_t>(point)], 4);
}

std::vector<std::string> TextsOf(const std::array<std::uint16_t, kAnalogWords> &words)
{
    std::vector<std::string> texts;
    texts.reserve(kAnalogWords);
    for (int point = 0; point < kAnalogWords; ++point)
        texts.push_back(AnalogWordName(point) + "=" + HexText(words[static_cast<std::size_t>(point)], 4));
    return texts;
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

}  // namespace

bool NoteAnalogWordWritten(int point)
{
    if (writtenIn != CurrentVisit()) {
        writtenIn = CurrentVisit();
        writtenPoints.clear();
    }
    return writtenPoints.insert(point).second;
}

void NoteAnalogWordsWritten(const WordRun &run)
{
    const int words = static_cast<int>(run.text.size() / 4);
    for (int point = 0; point < kAnalogWords; ++point) {
        const int address = AnalogWordAddress(point, SessionMeterKind == kCtr);
        if (address <= run.word && address > run.word - words)
            NoteAnalogWordWritten(point);
    }
}

std::string TextOf(WordsHeld held)
{
    if (held == WordsHeld::Silent)
        return Abort ? "stopped" : "no answer";
    return held == WordsHeld::Yes ? "held" : "other words";
}

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
                {"readBack", round.readBack},
                {"asFound", round.asFound}});
}

void RecordAnalogEnded(int point, const std::string &how, const std::string &typed, float error)
{
    RecordWith("step ended", point,
               {{"how", how},
                {"stays", WordOf(point)},
                {"reading", std::vector{typed}},
                {"error", RoundHalfEven(static_cast<double>(error))}});
}

void RecordAnalogRestored(std::string_view by, const AnalogRestored &restored)
{
    for (const WordRun &run : restored.runs)
        NoteAnalogWordsWritten(run);
    RecordWordsWritten(by, restored.runs);
    Record("analog words", {{"how", "restored"},
                            {"image", analog.image},
                            {"dacType", analog.dacType},
                            {"wordsBefore", TextsOf(restored.before)},
                            {"words", TextsOf(analog.words)},
                            {"readBack", TextOf(restored.held)}});
}

void RecordAnalogAccepted(const std::string &how, const std::string &imageBefore, WordsHeld held)
{
    Record("analog words", {{"how", how},
                            {"imageBefore", imageBefore},
                            {"image", analog.image},
                            {"dacType", analog.dacType},
                            {"words", TextsOf(analog.words)},
                            {"readBack", TextOf(held)}});
}

void RecordAnalogZeroed(const std::string &imageBefore)
{
    Record("analog image", {{"how", "zeroed"}, {"imageBefore", imageBefore}, {"image", analog.image}});
}

void RecordAnalogSettings(const std::string &how, const std::string &names, const std::vector<std::string> &found)
{
    Record("analog settings", {{"words", names}, {"found", found}, {"how", how}});
}

std::string TextOf(GivenBack given)
{
    const char *const kTexts[] = {"given back", "no answer", "stopped", "another meter", "not taken"};
    return kTexts[static_cast<int>(given)];
}

void RecordAnalogChoices()
{
    Record("settings", {{"dacType", DacTypeText}, {"currentOffsetPoint", CurrentOffsetPoint}});
}

}  // namespace ombrix
