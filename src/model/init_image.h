// Initialising a memory: in which runs a factory image goes into a meter, and whether what comes back proves it.
#pragma once

#include "model/nvm_map.h"

#include <string>
#include <vector>

namespace ombrix {

/// What an initialisation writes in its order, and reads back in the same order: first a run beside the image (word 117
/// with 0000; on VF the words 201..193 with the nominal texts of its three ranges), then the runs of the image.
std::vector<WordRun> RunsOfInit(int board, const std::string &image);

/// The words in which what was read back differs from what was written, in the order of the runs. The high byte of the
/// filter word (17, on VF 29) isn't compared: the meter's own options stand there. A reply of another length than its
/// run ("" for silence) differs in each of the run's words.
std::vector<int> DifferingWords(int board, const std::vector<WordRun> &written,
                                const std::vector<std::string> &replies);

/// Words as an operator reads them, runs in one: "56 to 0", "117, 17, 3 to 1", and how many more behind the eighth.
std::string WordList(const std::vector<int> &words);

/// What the value panel shows of a factory image: 120 digits.
std::string InitDisplayText(int board, const std::string &image);

}  // namespace ombrix
