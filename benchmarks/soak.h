// What ten thousand ranges leave behind in a station that is never closed.
#pragma once

#include <cstdint>
#include <vector>

namespace ombrix::benchmarks {

/// What the station holds after so many ranges.
struct SoakRow {
    int ranges = 0;
    double residentMiB = 0;
    double heapMiB = 0;  ///< asked for and not given back
    int files = 0;       ///< open
    int widgets = 0;
    int objects = 0;     ///< of the toolkit, widgets among them
    int timers = 0;      ///< of those objects
    double journal = 0;  ///< bytes for each range since the row before
};

/// Range after range of every board on virtual time, a fresh unit for each board in turn, in one window; a row is printed
/// after each thousand. Needs a QApplication. Throws std::runtime_error when a range can't be calibrated.
std::vector<SoakRow> RunSoak(int ranges);

/// The last third of the rows holds no more than the middle third: of memory at most 1 % more, of what is counted
/// nothing, and for each range the journal grows alike, within 1 %.
bool IsFlat(const std::vector<SoakRow> &rows);

}  // namespace ombrix::benchmarks
