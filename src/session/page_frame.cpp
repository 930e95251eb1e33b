#include "session/page_frame.h"

#include <map>
#include <utility>

namespace ombrix {
namespace {

std::map<int, StepEntry> stepTable;
std::map<int, std::function<void(QFrame *)>> pageBuilders;
std::map<int, std::function<void()>> tabPreparations;

template <class Procedure> Procedure Registered(const std::map<int, Procedure> &table, int key)
{
    const auto found = table.find(key);
    return found == table.end() ? Procedure() : found->second;
}

}  // namespace

std::function<bool(int)> StepAllowed = [](int) { return true; };

void RegisterSteps(std::initializer_list<int> stepIds, const StepEntry &entry)
{
    for (int id : stepIds)
        stepTable[id] = entry;
}

StepEntry EntryOfStep(int stepId)
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

void RegisterTab(int tab, std::function<void()> prepare)
{
    tabPreparations[tab] = std::move(prepare);
}

std::function<void()> PreparationOfTab(int tab)
{
    return Registered(tabPreparations, tab);
}

}  // namespace ombrix
