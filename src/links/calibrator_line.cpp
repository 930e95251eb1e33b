#include "links/calibrator_line.h"

#include "links/cal_output.h"
#include "links/calibrator_simulator.h"
#include "links/line_wait.h"
#include "model/settings.h"
#include "platform/clock.h"
#include "platform/line_guard.h"
#include "platform/text.h"
#include "platform/wire_trace.h"
#include "session/live_output.h"
#include "session/state.h"

#include <algorithm>
#include <deque>
#include <optional>

namespace ombrix {

SerialPort comCAL;
int CalWaitMs = 1000;
std::string CalReply;

namespace {

constexpr int kSilentReads = 10;                    // of one OPER?
constexpr int kMostLines = 32;                      // of one question: a line that chatters is no answer
constexpr std::int64_t kLatestMicros = 20'000'000;  // of an answer: twice the longest that is held back on purpose
constexpr std::string_view kReplyEnd = "\r\n";

// A question whose answer has not come.
struct OpenQuestion {
    CalibratorQuestion question;
    int output;  // the output in force when it was asked
    std::int64_t asked = 0;
};
std::deque<OpenQuestion> openQuestions;
int outputNumber = 0;

std::string received;  // behind the last line that was read
std::size_t bytesHeard = 0;

std::string_view CommandOf(CalibratorQuestion question)
{
    switch (question) {
    case CalibratorQuestion::Errors:
        return "ERR?";
    case CalibratorQuestion::Operate:
        return "OPER?";
    case CalibratorQuestion::Output:
        break;
    }
    return "OUT?";
}

bool IsWholeNumber(std::string text)
{
    if (text.starts_with('-') || text.starts_with('+'))
        text.erase(0, 1);
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

// Junk came before an answer that would be one without it.
bool EndsInAnswer(CalibratorQuestion question, std::string_view line)
{
    for (std::size_t from = 1; from < line.size(); ++from)
        if (IsAnswer(question, line.substr(from)))
            return true;
    return false;
}

// The oldest open question that a line answers, by IsAnswer or EndsInAnswer.
template <class Rule> auto QuestionOf(std::string_view line, Rule rule)
{
    return std::find_if(openQuestions.begin(), openQuestions.end(),
                        [line, rule](const OpenQuestion &open) { return rule(open.question, line); });
}

// Whose answer a line is. Those asked before that one were never answered. False when it is nobody's: a spoilt answer
// counts for none, but closes its question too, unless that is the one just asked, for which another line may come.
bool TakeAnswer(std::string_view line, OpenQuestion &answered)
{
    const auto found = QuestionOf(line, IsAnswer);
    if (found != openQuestions.end()) {
        answered = *found;
        openQuestions.erase(openQuestions.begin(), found + 1);
        return true;
    }
    const auto spoilt = QuestionOf(line, EndsInAnswer);
    if (spoilt != openQuestions.end() && spoilt + 1 != openQuestions.end())
        openQuestions.erase(openQuestions.begin(), spoilt + 1);
    return false;
}

// What was asked about another output is too old. An error stays one, whenever it was asked for.
bool IsCurrent(const OpenQuestion &answered, CalibratorQuestion question)
{
    return answered.question == question && (question == CalibratorQuestion::Errors || answered.output == outputNumber);
}

// Nothing on silence and on Abort: a line may be empty.
std::optional<std::string> NextLine()
{
    while (!Abort && !Holds(received, kReplyEnd) && received.size() <= kReplyLimit) {
        const std::string chunk = ReceiveCalibratorChunk1s();
        if (chunk.empty())
            break;
        received += chunk;
    }
    const std::size_t end = received.find(kReplyEnd);
    if (end == std::string::npos) {
        received.clear();
        return std::nullopt;
    }
    std::string line = received.substr(0, end);
    received.erase(0, end + kReplyEnd.size());
    return line;
}

// What has come answers an older question. The piece of a line that is still coming stays: its rest, alone, would look
// like another answer.
void SettleLateLines()
{
    received += comCAL.Drop();
    OpenQuestion late{};
    for (std::size_t end = received.find(kReplyEnd); end != std::string::npos; end = received.find(kReplyEnd)) {
        TakeAnswer(received.substr(0, end), late);
        received.erase(0, end + kReplyEnd.size());
    }
}

// A question whose answer was lost isn't waited for for ever: each later answer would be taken for the one before.
void ForgetLostQuestions()
{
    while (!openQuestions.empty() && NowMicros() - openQuestions.front().asked > kLatestMicros)
        openQuestions.pop_front();
}

void Ask(CalibratorQuestion question)
{
    SettleLateLines();
    ForgetLostQuestions();
    SendCalibratorCommand(CommandOf(question));  // first: a line that is opened again knows no older question
    openQuestions.push_back({question, outputNumber, NowMicros()});
}

// A trace is read for what went wrong. After a stop nobody waited long enough to know.
void MarkAnswer(CalibratorQuestion question, const CalibratorAnswer &answer)
{
    if (Abort || !answer.line.empty())
        return;
    const char *words = comCAL.IsGone() ? "The calibrator did not answer: its line has gone; asked "
                        : answer.silent ? "The calibrator did not answer "
                                        : "The calibrator answered something else to ";
    MarkTrace(TraceLine::Calibrator, words + std::string(CommandOf(question)));
}

bool OpenCalibratorAgain()
{
    if (!comCAL.OpenAgain())
        return false;
    received.clear();
    openQuestions.clear();
    comCAL.Write("REMOTE\n");
    NoteOutputLineBack();
    return true;
}

}  // namespace

void InitCalibratorLine()
{
    CalWaitMs = 1000;
    CalReply.clear();
    received.clear();
    openQuestions.clear();
    comCAL.onGone = NoteOutputLineGone;
    comCAL.onLine = GuardLine;
    comCAL.onBytes = [](ByteWay way, std::string_view bytes) { Trace(TraceLine::Calibrator, way, bytes); };
}

bool CalibratorLineIsGone()
{
    return HardwareMode && comCAL.IsGone();
}

void SendCalibratorCommand(std::string_view text)
{
    if (CalPort == 0)
        return;
    if (!HardwareMode) {
        if (const auto reply = SimulateCalibratorCommand(text))
            CalReply = *reply;
        return;
    }
    if (comCAL.IsGone() && !OpenCalibratorAgain())
        return;
    comCAL.Write(std::string(text) + "\n");
}

std::string ReceiveCalibratorChunk()
{
    if (!HardwareMode)
        return "";
    std::string chunk = ReceiveChunk(comCAL, CalWaitMs);
    bytesHeard += chunk.size();
    return chunk;
}

std::string ReceiveCalibratorChunk1s()
{
    CalWaitMs = 1000;
    return ReceiveCalibratorChunk();
}

std::string ReceiveCalibratorChunk5s()
{
    CalWaitMs = 5000;
    return ReceiveCalibratorChunk();
}

std::string ReadCalibratorLine()
{
    return HardwareMode ? CalReply = NextLine().value_or("") : CalReply;
}

void DropCalibratorInput()
{
    SettleLateLines();
    received.clear();
}

void OpenCalibratorPort(const std::string &device)
{
    comCAL.Open(device);
    received.clear();
    openQuestions.clear();
    NoteOutputLineBack();
}

CalibratorAnswer AskCalibrator(CalibratorQuestion question)
{
    CalibratorAnswer answer;
    if (!HardwareMode) {
        SendCalibratorCommand(CommandOf(question));
        return {Trim(ReadCalibratorLine()), "", false};
    }
    const std::size_t before = bytesHeard;
    Ask(question);
    int reads = question == CalibratorQuestion::Operate ? kSilentReads : 1;
    for (int lines = 0; lines < kMostLines && reads > 0 && !Abort && !comCAL.IsGone(); ++lines) {
        const std::size_t heard = bytesHeard;
        const auto line = NextLine();
        if (!line) {
            reads = bytesHeard == heard ? reads - 1 : 0;  // bytes that never became a line were the answer
            continue;
        }
        OpenQuestion answered{};
        const bool known = TakeAnswer(*line, answered);
        if (known && IsCurrent(answered, question)) {
            CalReply = *line;
            answer.line = Trim(*line);
            break;
        }
        answer.other = Trim(*line);
        reads = 1;
        // With no other question open a garbled line can only be this one's answer. A read-back is worth the wait.
        if (!known && openQuestions.size() == 1 && question != CalibratorQuestion::Output)
            break;
    }
    answer.silent = bytesHeard == before;
    MarkAnswer(question, answer);
    return answer;
}

void BeginCalibratorOutput()
{
    ++outputNumber;
}

bool IsAnswer(CalibratorQuestion question, std::string_view text)
{
    const std::string line = Trim(text);
    const bool output = ParseReadBack(line).has_value();
    switch (question) {
    case CalibratorQuestion::Errors:
        return !output && Holds(line, ",") && IsWholeNumber(Trim(Split(line, ',')[0]));
    case CalibratorQuestion::Operate:
        return line == "0" || line == "1";
    case CalibratorQuestion::Output:
        break;
    }
    return output;
}

}  // namespace ombrix
