#include "procedures/analog_work.h"

#include "calibration/analog_output.h"
#include "links/meter_protocol.h"
#include "model/range_tables.h"
#include "platform/text.h"
#include "procedures/analog_view.h"
#include "session/page_frame.h"

#include <array>
#include <cstddef>

namespace ombrix {

AnalogPage analogPage;

namespace {

AnalogPage &page = analogPage;
std::array<PointWork, kAnalogWords> work;

bool IsInside(int point)
{
    return !WorkOf(point).typed.empty() && IsInsideAnalogTolerance(point, WorkOf(point).error);
}

void EndPoint(int point, const std::string &how)
{
    PointWork &done = WorkOf(point);
    if (done.open)
        RecordAnalogEnded(point, how, done.typed, done.error);
    done.open = false;
}

void ShowLastDistance(int point)
{
    if (point == kNoPoint || WorkOf(point).typed.empty())
        return ShowDistance("", false, "");
    ShowDistance(AnalogDistanceText(point, WorkOf(point).error), IsInside(point),
                 (IsInside(point) ? "inside +/- " : "outside +/- ") + AnalogToleranceText(point) + AnalogUnit(point));
}

std::string TitleOf(int point)
{
    const std::string output = analog.dacType == kDacDual ? ", output " + std::to_string(AnalogConnector(point)) : "";
    return StepName(StepIdAtPosition(PositionOfAnalogPoint(point))) + output;
}

// Behind a reading that was inside.
std::string WhatComesNext(int point)
{
    if (NextAnalogPoint(analog.dacType, point, 1) >= 0)
        return "go on with \"Up\", or type another one";
    const std::string rest = PointsNotInside();
    return rest.empty() ? "all points are inside, click \"Accept\"" : "not inside yet: " + rest;
}

Prompt PromptOfPoint(int point)
{
    if (WorkOf(point).typed.empty() || !page.wordKnown)
        return {"Type what the output meter shows, then press Enter"};
    const std::string word = "The meter holds word " + HexText(analog.words[static_cast<std::size_t>(point)], 4) + ". ";
    if (IsInside(point))
        return {word + "The reading was inside:\r\n" + WhatComesNext(point), false, Tone::Well};
    return {word + "The reading was outside:\r\ntype what the output meter shows now"};
}

// Without the meter in hand nothing is on that would write into it.
AnalogState StateOfPlace()
{
    if (!AnalogSettingsBorrowed())
        return kAnalogAway;
    return page.verify ? kAnalogVerify : page.point == kNoPoint ? kAnalogNoPoint : kAnalogPoint;
}

}  // namespace

PointWork &WorkOf(int point)
{
    return work.at(static_cast<std::size_t>(point));
}

void ForgetPointWork()
{
    work = {};
}

void EndPoints(const std::string &how)
{
    for (int point = 0; point < kAnalogWords; ++point)
        EndPoint(point, how);
}

void DropPointWork(int point)
{
    EndPoint(point, "left");
    WorkOf(point) = {};
}

std::string PointsNotInside()
{
    std::string points;
    for (int point = 0; point < kAnalogWords; ++point)
        if (HasAnalogPoint(analog.dacType, point) && !IsInside(point))
            points += (points.empty() ? "" : " ") + AnalogWordName(point);
    return points;
}

void ShowOptions()
{
    ShowAnalogChoices({analog.dacType, page.kind, page.verify, AnalogCurrentPoint()});
}

void ShowPoint()
{
    const int point = page.point;
    if (point == kNoPoint)
        ShowAnalogPoint("Analog Output", "", "");
    else
        ShowAnalogPoint(TitleOf(point), AnalogEnterText(point), AnalogDesiredText(point, AnalogCurrentPoint()));
    std::array<std::string, kAnalogWords> last;
    for (std::size_t i = 0; i < last.size(); ++i)
        last[i] = work[i].typed;
    ShowLastReadings(last);
    ShowLastDistance(point);
}

void ShowPlace()
{
    ShowOptions();
    ShowPoint();
    const AnalogState state = StateOfPlace();
    if (MeterLineIsGone())
        page.told = {"The meter's line is gone:\r\ncheck it, then click the step again", true};
    if (page.told.text.empty() && state == kAnalogPoint)
        page.told = PromptOfPoint(page.point);
    if (page.told.text.empty())
        ShowAnalogState(state);
    else
        ShowAnalogState(state, page.told);
    page.told = {};
}

void ClosePoint()
{
    page.point = kNoPoint;
    HighlightStep(kNoPoint);
}

void ForgetTyped()
{
    ClearTypedReading();
    ClearTypedValue();
}

}  // namespace ombrix
