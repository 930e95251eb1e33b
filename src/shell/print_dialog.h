// The print dialog: where something is to be printed. Like the boxes it is shown and pumped, and Quit takes it away.
#pragma once

#include <optional>
#include <string>

namespace ombrix {

struct PrintTarget {
    std::string printer;  ///< "" prints into the file
    std::string file;     ///< path of a PDF
};

/// Asks for one of the system's printers or for a file. It begins with the system's own printer; where there is none
/// with a file of this title in the home folder. A file that can't be made is told, one that is there is asked about,
/// before the dialog goes. Nothing when it was cancelled.
std::optional<PrintTarget> AskPrintTarget(const std::string &title);

}  // namespace ombrix
