#include "links/uut.h"

#include "links/calibrator_line.h"
#include "platform/text.h"
#include "session/state.h"

#include <algorithm>

namespace ombrix {
namespace {

constexpr std::string_view kBlockEnd = "\r\n";

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// "#0": the data reach to the first CR LF.
UutBlock OpenEndedBlock(std::string_view buffer)
{
    const std::size_t end = buffer.find(kBlockEnd, 2);
    if (end == std::string_view::npos)
        return {UutState::NeedsMore, 2, 0};
    return {UutState::Whole, 2, end - 2};
}

}  // namespace

void UutSetup(std::string_view baud)
{
    SendCalibratorCommand("UUT_SET " + std::string(baud) + ",XON,DBIT8,SBIT1,PNONE");
}

void UutFlush()
{
    SendCalibratorCommand("UUT_FLUSH");
}

void UutSend(std::string_view frame)
{
    std::string length = std::to_string(frame.size());
    if (length.size() < 2)
        length.insert(0, "0");
    SendCalibratorCommand("UUT_SEND #" + std::to_string(length.size()) + length + std::string(frame));
}

UutBlock ParseUutBlock(std::string_view buffer)
{
    if (buffer.size() < 3)
        return {};
    if (!IsDigit(buffer[1]))
        return {UutState::Bad, 2, 0};
    if (buffer[1] == '0')
        return OpenEndedBlock(buffer);

    const auto lengthDigits = static_cast<std::size_t>(buffer[1] - '0');
    const std::size_t start = 2 + lengthDigits;
    if (buffer.size() < start)
        return {UutState::NeedsMore, start, 0};
    std::size_t length = 0;
    for (char digit : buffer.substr(2, lengthDigits)) {
        if (!IsDigit(digit))
            return {UutState::Bad, start, 0};
        length = length * 10 + static_cast<std::size_t>(digit - '0');
    }
    const bool ended = buffer.find(kBlockEnd, start + length) != std::string_view::npos;
    return {ended ? UutState::Whole : UutState::NeedsMore, start, length};
}

std::string UutReceive()
{
    DropCalibratorInput();  // an answer that came after its question was given up: it belongs to another frame
    SendCalibratorCommand("UUT_RECV?");
    std::string buffer;
    std::size_t received = 0;
    UutBlock block;
    // A bad block is waited out until silence: what follows it belongs to nothing.
    while (!Abort && block.state != UutState::Whole && received <= kReplyLimit) {
        const std::string chunk = ReceiveCalibratorChunk1s();
        if (chunk.empty())
            break;
        received += chunk.size();
        buffer += chunk;
        buffer.erase(0, std::min(buffer.find('#'), buffer.size()));
        block = ParseUutBlock(buffer);
    }
    if (Abort || block.start >= buffer.size())
        return "";
    return buffer.substr(block.start, block.length);
}

}  // namespace ombrix
