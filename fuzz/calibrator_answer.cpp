// Fuzzes: src/links/calibrator_line.cpp src/links/cal_output.cpp
// Short: 64
//
// What a calibrator answers: late, not at all, behind junk. No answer to an older question about another output is ever
// taken for the one that was asked for.

#include "fuzz/support/case.h"
#include "fuzz/support/instruments.h"
#include "links/cal_output.h"
#include "links/calibrator_line.h"
#include "platform/clock.h"
#include "platform/text.h"
#include "session/state.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

constexpr CalibratorQuestion kQuestions[] = {CalibratorQuestion::Errors, CalibratorQuestion::Operate,
                                             CalibratorQuestion::Output};

void RequireOneMeaning(const std::string &line)
{
    int meanings = 0;
    for (const auto question : kQuestions)
        meanings += IsAnswer(question, line) ? 1 : 0;
    Require(meanings <= 1, "a line answers one kind of question at most");
    const auto output = ParseReadBack(line);
    Require(output.has_value() == IsAnswer(CalibratorQuestion::Output, line), "an output is what can be shown");
    if (output) {
        Require(std::isfinite(output->number), "an output is a number");
        Require(!DescribeCalOutput(output->number, output->unit).text.empty(), "an output can be told");
    }
}

// A whole line of what was said, to the line end that follows. It begins behind the one before, or where a reply begins:
// a piece without an end, followed by silence, is dropped.
bool IsLineOf(const std::vector<std::string> &replies, const std::string &line)
{
    constexpr std::string_view kEnd = "\r\n";
    std::string said;
    std::vector<std::size_t> begins;
    for (const std::string &reply : replies) {
        begins.push_back(said.size());
        said += reply;
    }
    for (std::size_t end = said.find(kEnd); end != std::string::npos; end = said.find(kEnd, end + 1))
        begins.push_back(end + kEnd.size());
    return std::any_of(begins.begin(), begins.end(), [&](std::size_t begin) {
        const std::size_t end = said.find(kEnd, begin);
        return end != std::string::npos && Trim(said.substr(begin, end - begin)) == line;
    });
}

// Any bytes at any time: an answer has the form of its question and was said as a line.
void AskAmongNoise(Case &input)
{
    Instruments instruments;
    std::vector<std::string> said;
    std::int64_t lastSaid = 0;
    instruments.calibrator.onWrite = [&](const std::string &) {
        const int seed = input.Byte();
        const std::int64_t wanted = instruments.clock.Elapsed() + std::int64_t{input.Below(8)} * 300;
        const std::string bytes = input.Bytes(static_cast<std::size_t>(input.Byte()));
        const auto pieces = Pieces(bytes, seed);
        const std::int64_t begin = std::max(wanted, lastSaid + 1);  // behind what it said before
        lastSaid = begin + static_cast<std::int64_t>(pieces.size());
        said.push_back(bytes);
        SayInPieces(instruments.calibrator, pieces, static_cast<int>(begin - instruments.clock.Elapsed()), 1);
    };
    for (int asked = 0; asked < 12 && !input.IsOver(); ++asked) {
        const auto question = kQuestions[input.Below(3)];
        const CalibratorAnswer answer = AskCalibrator(question);
        if (answer.line.empty())
            continue;
        Require(IsAnswer(question, answer.line), "an answer has the form of its question");
        Require(IsLineOf(said, answer.line), "an answer was said, as a line");
        Require(!answer.silent, "who answers isn't silent");
    }
}

// A calibrator that answers in the order in which it is asked, or not at all, with what tells when it was asked.
class Orderly
{
public:
    explicit Orderly(Case &input) : m_input(input)
    {
        m_instruments.calibrator.onWrite = [this](const std::string &command) { Hear(command); };
    }

    void Run()
    {
        for (int step = 0; step < 24 && !m_input.IsOver(); ++step) {
            const int what = m_input.Below(4);
            if (what == 3) {
                BeginCalibratorOutput();
                ++m_output;
                continue;
            }
            const CalibratorAnswer answer = AskCalibrator(kQuestions[what]);
            if (!answer.line.empty() && what != 0)
                Require(answer.line == Reply(kQuestions[what]), "an answer is about the output in force");
        }
    }

private:
    std::string Reply(CalibratorQuestion question) const
    {
        if (question == CalibratorQuestion::Errors)
            return std::to_string(m_output) + ",\"Error\"";
        if (question == CalibratorQuestion::Operate)
            return std::to_string(m_output % 2);
        return std::to_string(m_output) + ".5E-3,V,0E+00,0,0E+00";
    }

    void Hear(const std::string &command)
    {
        const auto question = command == "ERR?\n"    ? CalibratorQuestion::Errors
                              : command == "OPER?\n" ? CalibratorQuestion::Operate
                                                     : CalibratorQuestion::Output;
        const int how = m_input.Byte();
        if (how % 8 == 7)
            return;
        // Not before the answer that it said last, and never later than answers are waited for.
        const std::int64_t wanted = NowMicros() + std::int64_t{how / 8 % 8} * 600'000;
        m_lastSaid = std::max(wanted, m_lastSaid + 1000);
        constexpr std::string_view kJunk[] = {"", "", "", "", "", "~", "#*", "?"};
        const std::string line = std::string(kJunk[how % 8]) + Reply(question) + "\r\n";
        m_instruments.calibrator.Says(line, static_cast<int>((m_lastSaid - NowMicros()) / 1000));
    }

    Case &m_input;
    Instruments m_instruments;
    int m_output = 0;
    std::int64_t m_lastSaid = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    switch (input.Below(3)) {
    case 0:
        RequireOneMeaning(input.Rest());
        break;
    case 1:
        AskAmongNoise(input);
        break;
    default:
        Orderly(input).Run();
    }
    return 0;
}
