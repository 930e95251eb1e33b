// What every start must leave, whatever the files in the station's folder were.
#pragma once

#include <string>

namespace ombrix::test {

/// "" when each of the settings is one that the procedures can use, else what the first that isn't breaks.
std::string UnusableSetting();

}  // namespace ombrix::test
