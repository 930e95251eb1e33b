// What the analog output's page knows: the point that is put out, what was done at each point since the meter was taken,
// and how all of it is shown between two clicks.
#pragma once

#include "calibration/analog_journal.h"
#include "calibration/analog_points.h"
#include "widgets/page_states.h"

#include <optional>
#include <string>

namespace ombrix {

constexpr int kNoPoint = -1;
constexpr int kNoMode = -1;

struct AnalogPage {
    int point = kNoPoint;      ///< that is put out and waits for readings
    int kind = kNoMode;        ///< the mode that the page has given the meter
    std::optional<int> cable;  ///< what was connected last, as a choice; none: not known
    bool wordKnown = false;    ///< the meter was asked for the point's word after it was written last
    bool verify = false;
    bool cableDone = false;
    std::optional<AnalogRound> round;  ///< whose word is being written
    Prompt told;                       ///< what the work that just ended has to say
};
extern AnalogPage analogPage;

// ---- what was done ----

struct PointWork {
    int rounds = 0;
    std::string typed;  ///< the last reading, as it came; "" none yet
    float error = 0;    ///< how far off it was
    bool open = false;  ///< its word was written, and it has neither been accepted nor told as left
};
PointWork &WorkOf(int point);

/// Nothing was done anywhere; nobody is told.
void ForgetPointWork();
/// Tells the journal of all points that are open how they ended: "accepted", "left", "quit".
void EndPoints(const std::string &how);
/// The point's word was written by something else than its readings: told as left, and blank.
void DropPointWork(int point);
/// The points of the meter's DAC whose last reading was not inside, "VO CG"; "" none.
std::string PointsNotInside();

// ---- what is shown ----

void ShowOptions();
/// The point that is put out, and the last readings of all.
void ShowPoint();
/// The page between two clicks: what stands open, and what the work behind it has to say.
void ShowPlace();
/// No point is put out any more.
void ClosePoint();
/// Empties the fields that are typed into.
void ForgetTyped();

}  // namespace ombrix
