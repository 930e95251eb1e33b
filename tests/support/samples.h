// The .dpm files that are installed with the program.
#pragma once

#include <string>

namespace ombrix::test {

/// Puts all of them into the current folder, as the program's own folder has them.
void PutSamples();
/// The text of one, without its line end.
std::string Sample(const std::string &name);

}  // namespace ombrix::test
