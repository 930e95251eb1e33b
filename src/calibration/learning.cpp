#include "calibration/learning.h"

#include "calibration/step_context.h"
#include "calibration/step_state.h"
#include "model/nominals.h"
#include "model/range_tables.h"
#include "platform/text.h"
#include "session/journal.h"
#include "session/state.h"

#include <cmath>

namespace ombrix {
namespace {

float SizeOf(const std::string &reading)
{
    return std::fabs(static_cast<float>(Val(reading)));
}

void RecordLearned(const JournalFields &what)
{
    JournalFields fields = {{"board", BoardName(SCType)}, {"word", HexText(step.StepNvmWord, 2)}};
    fields.insert(fields.end(), what.begin(), what.end());
    Record("learned", fields);
}

}  // namespace

float ReadingSize(const std::string &plus, const std::string &minus)
{
    return minus.empty() ? SizeOf(plus) : (SizeOf(minus) + SizeOf(plus)) / 2.0f;
}

void UpdateNominalSlope(float size)
{
    const auto word = static_cast<float>(HexWordToNumber(step.StepWordHex));
    if (word == step.FirstPointWord || size == step.FirstPointReading)
        return;
    const float shown = (word - step.FirstPointWord) / (size - step.FirstPointReading);
    const float learned = (step.NominalSlope * 9.0f + shown) / 10.0f;
    if (learned == step.NominalSlope)
        return;
    RecordLearned({{"slopeBefore", step.NominalSlope}, {"slope", learned}});
    step.NominalSlope = learned;
    SetNominalSlope(step.StepNvmWord, learned);
}

void UpdateNominalWord()
{
    const std::string old = GetNominalWord(step.StepNvmWord);
    const auto oldWord = static_cast<float>(HexWordToNumber(old));
    const auto newWord = static_cast<float>(HexWordToNumber(step.StepWordHex));
    const float value = (oldWord * 9.0f + newWord) / 10.0f;
    const std::string learned = HexText(RoundHalfEven(static_cast<double>(value)), 4);
    if (learned == old)
        return;
    RecordLearned({{"nominalBefore", old}, {"nominal", learned}});
    SetNominalWord(step.StepNvmWord, learned);
}

void UpdateNominalWordFor(int word, const std::string &hex, bool offset)
{
    step.StepNvmWord = word;
    step.StepWordHex = hex;
    step.OffsetStep = offset;
    UpdateNominalWord();
}

}  // namespace ombrix
