#include "shell/step_marks.h"

#include "platform/text.h"
#include "session/journal.h"

#include <map>
#include <utility>
#include <vector>

namespace ombrix {
namespace {

constexpr int kNobody = -1;

struct StepState {
    std::string step;
    std::string word;  // its number
    std::string how;
    std::string stays;
    std::string reading;
    std::string error;  // "" where the step has none
};

int listener = kNobody;
std::function<void()> onChange = [] {};
std::string meter;                                       // who stands on the station
std::map<std::pair<std::string, int>, StepState> steps;  // by board and position

std::string Joined(const std::vector<std::string> &texts)
{
    std::string all;
    for (const std::string &text : texts)
        all += (all.empty() ? "" : " / ") + text;
    return all;
}

std::string Signed(int number)
{
    return number > 0 ? "+" + std::to_string(number) : std::to_string(number);
}

std::vector<std::string> TextsOf(const JournalEvent &event, std::string_view name)
{
    const JournalValue *value = FieldOf(event, name);
    const auto *texts = value ? std::get_if<std::vector<std::string>>(&value->is) : nullptr;
    return texts ? *texts : std::vector<std::string>();
}

void TakeVisit(const JournalEvent &event)
{
    steps.clear();
    meter = TextOf(event, "meter") + " with " + TextOf(event, "board") + " board, revision " +
            TextOf(event, "revision") + ", identified " + event.utc;
}

// A round has written the word of a step: what was accepted before no longer stands in the meter, unless the same
// value does.
void TakeWritten(const std::string &word, const std::string &stays = "")
{
    for (auto &[place, state] : steps)
        if (state.word == word && state.stays != stays && state.how == "accepted")
            state.how = "written again";
}

// Two steps may share a word: what stays in it counts for both.
void TakeEnd(const JournalEvent &event)
{
    StepState state;
    state.step = TextOf(event, "step");
    state.word = TextOf(event, "word");
    state.how = TextOf(event, "how");
    state.stays = TextOf(event, "stays");
    state.reading = Joined(TextsOf(event, "reading"));
    if (FieldOf(event, "error"))
        state.error = Signed(static_cast<int>(NumberOf(event, "error")));
    if (!state.stays.empty())
        TakeWritten(state.word, state.stays);
    steps[{TextOf(event, "board"), static_cast<int>(NumberOf(event, "position"))}] = state;
}

void Take(const JournalEvent &event)
{
    if (event.kind == "visit")
        TakeVisit(event);
    else if (event.kind == "step ended")
        TakeEnd(event);
    else if (event.kind == "round")
        TakeWritten(TextOf(event, "word"));
    else if (event.kind == "words written")
        for (const std::string &word : TextsOf(event, "words"))
            TakeWritten(word);
    else
        return;
    onChange();
}

}  // namespace

void FollowSteps(std::function<void()> changed)
{
    StopFollowingSteps();
    steps.clear();
    meter.clear();
    onChange = std::move(changed);
    listener = ListenToJournal(Take);
}

void StopFollowingSteps()
{
    if (listener != kNobody)
        StopListening(std::exchange(listener, kNobody));
    onChange = [] {};
}

std::string MarkOfStep(const std::string &board, int position)
{
    const auto found = steps.find({board, position});
    return found == steps.end() || found->second.how != "accepted" ? "" : Trim("✓ " + found->second.error);
}

std::string StepSummary()
{
    if (meter.empty())
        return "No meter was identified yet.";
    std::string text = meter + "\n";
    for (const auto &[place, state] : steps) {
        text += "\n" + place.first + "  " + state.step + ": " + state.how;
        if (!state.stays.empty())
            text += ", word " + state.word + " = " + state.stays;
        if (!state.reading.empty())
            text += ", reading " + state.reading + ", error " + state.error;
    }
    return steps.empty() ? text + "\nNo step has ended yet." : text;
}

}  // namespace ombrix
