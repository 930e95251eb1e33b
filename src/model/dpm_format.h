// The stored configuration of a meter, a .dpm file: one line of hexadecimal text, two digits a byte.
//
// Its first field counts, up to the first line end or comma: 180 upper-case digits, of which most are words of the
// meter. What stands behind them isn't used.
#pragma once

#include "model/nvm_map.h"
#include "model/range_names.h"

#include <string>
#include <string_view>
#include <vector>

namespace ombrix {

constexpr std::size_t kDpmDigits = 180;

struct DpmFile {
    std::string image;  ///< as read, also of a file that can't be sent
    std::string error;  ///< why it can't be sent, "" when it can
};
/// The bytes of a file, checked for the tab in front and told by that tab's caption. Places 13..20 of the image are
/// zeros unless "Z1" stands at 13 and 14.
DpmFile CheckDpmText(std::string_view bytes, int tab, const std::string &caption);
/// The same of the file at a path. What is no file, such as a pipe, isn't opened.
DpmFile ReadDpmFile(const std::string &path, int tab, const std::string &caption);

/// The board that a file is for; -1 when its code is none that a file may have.
int BoardOfDpm(std::string_view image);

/// The runs of the image in the order in which they are written; on TC and Temp without the words 29..27, which are
/// calibration there.
std::vector<WordRun> RunsOfDpm(std::string_view image, int board);

/// What the meter is to show at the test of the file's range.
std::string DesiredOfTest(int board, const RangeDescription &range);

}  // namespace ombrix
