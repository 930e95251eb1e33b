#include "session/page_frame.h"

#include <map>
#include <utility>

namespace ombrix
{
namespace
{

std::map<int, StepEntry> stepTable;
std::map<int, std::function<void(QFrame *)>> pageBuilders;

} // namespace

void RegisterSteps(std::initializer_list<int> stepIds, StepEntry entry)
{
    for (int id : stepIds)
        stepTable[id] = entry;
}

StepEntry EntryOfStep(int stepId)
{
    const auto found = stepTable.find(stepId);
    return found == stepTable.end() ? StepEntry() : found->second;
}

void RegisterPage(int index, std::function<void(QFrame *page)> build)
{
    pageBuilders[index] = std::move(build);
}

std::function<void(QFrame *page)> BuilderOfPage(int index)
{
    const auto found = pageBuilders.find(index);
    return found == pageBuilders.end() ? std::function<void(QFrame *)>() : found->second;
}

} // namespace ombrix
