#include "calibration/memory_journal.h"

#include "model/range_tables.h"
#include "platform/text.h"
#include "session/journal.h"
#include "session/state.h"

#include <string>

namespace ombrix {

void RecordWordsWritten(std::string_view by, const std::vector<WordRun> &runs)
{
    constexpr std::size_t kWordDigits = 4;
    std::vector<std::string> words;
    std::vector<std::string> texts;
    for (const WordRun &run : runs) {
        for (int i = 0; i < static_cast<int>(run.text.size() / kWordDigits); ++i)
            words.push_back(HexText(run.word - i, 2));
        texts.push_back(run.text);
    }
    Record("words written", {{"by", by}, {"board", BoardName(SCType)}, {"words", words}, {"texts", texts}});
}

}  // namespace ombrix
