// The dialogs that ask for a file and for a printer. Like the boxes they are shown and pumped, and Quit takes them away.
#pragma once

#include "session/outlets.h"

#include <string>
#include <vector>

namespace ombrix {

/// An Open dialog that begins at a file or folder; `filter` as "Meter files (*.dpm)". The path of a file that is there,
/// "" when it was cancelled.
std::string ChooseFile(const std::string &title, const std::string &filter, const std::string &start);

/// The same for a file that need not be there yet.
std::string NameFile(const std::string &title, const std::string &filter, const std::string &start);

/// A print dialog, then the lines in 'Courier New' at `points`, smaller where the longest would not fit the page. A file
/// can be printed to where there is no printer. "" when it was printed or cancelled, otherwise why it could not be.
std::string PrintLines(const std::string &title, const std::vector<PrintedLine> &lines, int points);

/// A short sound.
void Beep();

}  // namespace ombrix
