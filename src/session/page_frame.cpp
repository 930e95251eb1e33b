#include "session/page_frame.h"

#include "session/procedure.h"

#include <map>
#include <utility>

namespace ombrix {

FrameHooks frameHooks;

namespace {

std::map<int, StepRecord> stepTable;
std::map<int, std::function<void(QFrame *)>> pageBuilders;
std::map<int, TabRecord> tabTable;
std::string unsaved;

template <class Record> Record Registered(const std::map<int, Record> &table, int key)
{
    const auto found = table.find(key);
    return found == table.end() ? Record() : found->second;
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
    for (const int id : stepIds)
        stepTable[id] = record;
}

StepRecord RecordOfStep(int stepId)
{
    return Registered(stepTable, stepId);
}

void RegisterPage(int index, std::function<void(QFrame *page)> build)
{
    pageBuilders[index] = std::move(build);
}

std::function<void(QFrame *page)> BuilderOfPage(int index)
{
    return Registered(pageBuilders, index);
}

void RegisterTab(int tab, TabRecord record)
{
    tabTable[tab] = std::move(record);
}

TabRecord RecordOfTab(int tab)
{
    return Registered(tabTable, tab);
}

}  // namespace ombrix
