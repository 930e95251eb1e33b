#include "model/init_image.h"

#include "model/memory_values.h"
#include "model/nominals.h"
#include "platform/text.h"
#include "session/state.h"

#include <string_view>

namespace ombrix {
namespace {

constexpr std::size_t kWordDigits = 4;

bool IsFilterWord(int board, int word)
{
    return word == (board == kVf ? 29 : 17);
}

std::string Compared(int board, int word, const std::string &text, std::size_t place)
{
    const std::string digits = text.substr(place, kWordDigits);
    return IsFilterWord(board, word) ? Right(digits, 2) : digits;
}

}  // namespace

std::vector<WordRun> RunsOfInit(int board, const std::string &image)
{
    if (board != kVf)
        return {{117, "0000"}, {56, image}};
    return {{201, NominalWordOf(kVf, 201) + NominalWordOf(kVf, 198) + NominalWordOf(kVf, 195)},
            {49, DigitsAt(image, 1, 24)},
            {40, DigitsAt(image, 25, 92)},
            {17, DigitsAt(image, 117, 72)}};
}

std::vector<int> DifferingWords(int board, const std::vector<WordRun> &written, const std::vector<std::string> &replies)
{
    std::vector<int> differing;
    for (std::size_t run = 0; run < written.size(); ++run) {
        const std::string &text = written[run].text;
        const std::string reply = run < replies.size() ? replies[run] : "";
        int word = written[run].word;
        for (std::size_t place = 0; place < text.size(); place += kWordDigits, --word) {
            if (reply.size() != text.size() ||
                Compared(board, word, reply, place) != Compared(board, word, text, place))
                differing.push_back(word);
        }
    }
    return differing;
}

std::string WordList(const std::vector<int> &words)
{
    constexpr int kTold = 8;
    std::string list;
    int told = 0;
    for (std::size_t first = 0; first < words.size(); ++told) {
        std::size_t last = first;
        while (last + 1 < words.size() && words[last + 1] == words[last] - 1)
            ++last;
        if (told == kTold)
            return list + " and " + std::to_string(words.size() - first) + " more";
        list += (list.empty() ? "" : ", ") + std::to_string(words[first]);
        if (last > first)
            list += (last > first + 1 ? " to " : ", ") + std::to_string(words[last]);
        first = last + 1;
    }
    return list;
}

std::string InitDisplayText(int board, const std::string &image)
{
    if (board != kVf)
        return Right(image, kShownDigits).replace(12, 8, "00000000");
    return "0000000000000000" + DigitsAt(image, 53, 4) + DigitsAt(image, 93, 12) + DigitsAt(image, 61, 2) + "0000" +
           DigitsAt(image, 27, 2) + DigitsAt(image, 57, 4) + DigitsAt(image, 65, 28) + Right(image, 24) +
           DigitsAt(image, 117, 24);
}

}  // namespace ombrix
