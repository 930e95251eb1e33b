// The second meter, at address 2, that switches the signal between voltage and current.
#pragma once

#include <string>
#include <string_view>

namespace ombrix {

/// "V" or another text; "V" after opening.
extern std::string SwitchState;

/// On voltage.
void InitOutputSwitch();

void OpenOutputSwitch();
/// Nothing when it stands there already.
void SetOutputSwitch(const std::string &position);
/// With UseSwitch: "V" for a value that holds "V", "A" for one that holds "A" (not "FAR"); others leave it alone.
void ApplySwitched(std::string_view value);

}  // namespace ombrix
