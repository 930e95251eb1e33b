// What a page that writes words beside the range steps tells the journal of them.
#pragma once

#include "model/nvm_map.h"

#include <string_view>
#include <vector>

namespace ombrix {

/// "words written": by whom, on which board, each word's number ("words") and the text of each run. Steps that were
/// accepted with one of these words lose their mark.
void RecordWordsWritten(std::string_view by, const std::vector<WordRun> &runs);

}  // namespace ombrix
