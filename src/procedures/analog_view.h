// What the analog output's page shows: its widgets, and the states in which they are on.
#pragma once

#include "calibration/analog_points.h"
#include "widgets/fields.h"
#include "widgets/page_states.h"

#include <array>
#include <functional>
#include <string>

class QFrame;

namespace ombrix {

enum AnalogState {
    kAnalogOpening,
    kAnalogSilent,   ///< the meter has not answered
    kAnalogAway,     ///< the meter has its own settings, and nothing is written into it before a step
    kAnalogNoPoint,  ///< ready, and no point is put out
    kAnalogPoint,    ///< a point is put out and waits for a reading
    kAnalogWorking,
    kAnalogCable,   ///< waits for the output cable
    kAnalogVerify,  ///< values are put out by hand
    kAnalogLeaving,
};

/// What the page does when the operator uses a control.
struct AnalogHandlers {
    Commit typed;  ///< txtRead
    Commit value;  ///< txtMeterVal
    std::function<void(int)> dac, mode, calVfy, currentPoint;
    std::function<void()> up, down, accept, raw, done, cable;
};

void BuildAnalogView(QFrame *frame, const AnalogHandlers &handlers);

/// The same as ShowPageState and ShowPrompt.
void ShowAnalogState(AnalogState state);
void ShowAnalogState(AnalogState state, const Prompt &prompt);
void ShowAnalogPrompt(const Prompt &prompt);
AnalogState AnalogStateNow();

struct AnalogChoices {
    int dacType = kDacXmtr;
    int kind = -1;  ///< -1 none
    bool verify = false;
    int currentPoint = 200;
};
/// Sets the options, and the picture of the output's connectors.
void ShowAnalogChoices(const AnalogChoices &choices);

/// The point that is put out: its name and its two lines; "" for none.
void ShowAnalogPoint(const std::string &title, const std::string &enter, const std::string &desired);
void ShowLastReadings(const std::array<std::string, kAnalogWords> &readings);
/// How far the last reading was off, large; "" none.
void ShowDistance(const std::string &distance, bool inside, const std::string &words);
/// What is asked while the page waits for the cable.
void ShowCableText(const std::string &text, const std::string &more);

/// Empties txtRead or txtMeterVal.
void ClearTypedReading();
void ClearTypedValue();
/// Selects what stands in the field that has the keys: the next character takes its place.
void SelectTyped();

}  // namespace ombrix
