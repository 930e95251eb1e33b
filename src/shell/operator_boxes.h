// Message boxes with OK alone, where the operator must act. They return when they are confirmed.
#pragma once

#include <string>

namespace ombrix {

/// With an exclamation mark. False when Esc took it away, or the end of the program.
bool PromptOperator(const std::string &text, const std::string &title);
/// With a stop sign.
void WarnOperator(const std::string &text, const std::string &title);

/// Takes away every box that is up; whoever waits for one goes on as if it had been confirmed.
void CloseBoxes();
/// From now on (until `false`) no box comes up: nobody is there to confirm it.
void SilenceBoxes(bool on);

}  // namespace ombrix
