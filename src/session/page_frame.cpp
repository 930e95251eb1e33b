#include "session/page_frame.h"

#include "session/procedure.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace ombrix {

FrameHooks frameHooks;
PageTables pageTables;

namespace {

std::string unsaved;

template <class Record> Record Registered(const std::map<int, Record> &table, int key)
{
    const auto found = table.find(key);
    return found == table.end() ? Record() : found->second;
}

// Takes over what a field is told, once: a second one would overwrite the first unseen.
template <class Call> void Tell(Call &known, const Call &told, const std::string &what)
{
    if (told && known)
        throw std::logic_error(what + " is registered twice");
    if (told)
        known = told;
}

}  // namespace

void ShowConnectionDiagram(int row)
{
    frameHooks.showConnectionDiagram(row);
}

void ShowAnalogDiagram(int row, bool dual)
{
    frameHooks.showAnalogDiagram(row, dual);
}

void HideConnectionDiagram()
{
    frameHooks.hideConnectionDiagram();
}

void ShowBoardParts(const std::vector<BoardPart> &parts)
{
    frameHooks.showBoardParts(parts);
}

std::string CableMessage(int row)
{
    return frameHooks.cableMessage(row);
}

void CableConnected(int row)
{
    frameHooks.cableConnected(row);
}

void PrepareFileValues(QFrame *place)
{
    frameHooks.prepareFileValues(place);
}

void ShowFileValues(const std::string &image)
{
    frameHooks.showFileValues(image);
}

void HideFileValues()
{
    frameHooks.hideFileValues();
}

void FillPage(int index)
{
    frameHooks.fillPage(index);
}

void ShowPage(int index)
{
    SetNavigation(Navigation::Free);
    unsaved.clear();
    frameHooks.showPage(index);
}

void SetUnsaved(const std::string &sentence)
{
    unsaved = sentence;
}

std::string Unsaved()
{
    return unsaved;
}

void ShowWordBoxes(const WordBoxes &boxes)
{
    frameHooks.showWordBoxes(boxes);
}

void EnterRawWords(const RawWordsFrom &from)
{
    frameHooks.enterRawWords(from);
}

void NextStep()
{
    RunAfterProcedure([] { frameHooks.openNextStep(); });
}

void OpenStep(int position)
{
    RunAfterProcedure([position] { frameHooks.openStep(position); });
}

void HighlightStep(int index)
{
    frameHooks.highlightStep(index);
}

void ShowCalPanel(bool on)
{
    frameHooks.showCalPanel(on);
}

void RegisterSteps(std::initializer_list<int> stepIds, const StepRecord &record)
{
    for (const int id : stepIds) {
        StepRecord &known = pageTables.steps[id];
        Tell(known.enter, record.enter, "The way into step " + std::to_string(id));
        Tell(known.allowed, record.allowed, "What allows step " + std::to_string(id));
        known.page = record.page < 0 ? known.page : record.page;
        known.takesInput = known.takesInput || record.takesInput;
    }
}

StepRecord RecordOfStep(int stepId)
{
    return Registered(pageTables.steps, stepId);
}

bool StepIsAllowed(int stepId, int position)
{
    const StepRecord record = RecordOfStep(stepId);
    return !record.allowed || record.allowed(position);
}

void RegisterPage(int index, const std::function<void(QFrame *page)> &build)
{
    Tell(pageTables.pages[index], build, "Page " + std::to_string(index));
}

std::function<void(QFrame *page)> BuilderOfPage(int index)
{
    return Registered(pageTables.pages, index);
}

void RegisterTab(int tab, const TabRecord &record)
{
    TabRecord &known = pageTables.tabs[tab];
    const std::string what = " of tab " + std::to_string(tab);
    Tell(known.prepare, record.prepare, "The preparation" + what);
    Tell(known.leave, record.leave, "The leaving" + what);
    Tell(known.lastWords, record.lastWords, "The last words" + what);
}

TabRecord RecordOfTab(int tab)
{
    return Registered(pageTables.tabs, tab);
}

}  // namespace ombrix
