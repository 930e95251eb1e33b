// The cable between the calibrator and an AC3 board: which one a range needs, which one is connected.
#pragma once

#include <string>

namespace ombrix {

/// What the operator is to check before the range at `row` of the board in work; "" when its cable is the one connected
/// last, or when the board or the row asks for none.
std::string MessageOfCable(int row);

/// The range at `row` was opened in full: its cable is the one connected now. Nothing where none is needed.
void RememberCable(int row);

/// The next AC3 range asks for its cable again.
void ForgetCable();

}  // namespace ombrix
