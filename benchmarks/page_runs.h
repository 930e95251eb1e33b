// The longest that each page keeps its operator waiting, in the real window on the bench's instruments.
#pragma once

#include <string>
#include <vector>

namespace ombrix::benchmarks {

struct PageRun {
    std::string page;
    double longestBlockMs = 0;  ///< of the middle one of three runs
};

/// Each page's work from the click that opens it until navigation is free again, painted, on virtual time: no wait takes
/// any time, so what is left is what keeps the event loop. Needs a QApplication. Throws std::runtime_error when a page
/// can't be worked.
std::vector<PageRun> RunEachPage();

}  // namespace ombrix::benchmarks
