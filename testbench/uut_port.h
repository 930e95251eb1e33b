// The calibrator's own meter port: what a meter said waits here until the station asks for it, in a block.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ombrix::bench {

/// Gathers the bytes of the station into command lines. A line ends with LF, but the block of a UUT_SEND may hold any
/// byte, so it is counted.
class CommandReader
{
public:
    std::optional<std::string> Take(char byte);
    void Clear() { m_text.clear(); }

private:
    bool IsWhole() const;
    std::string m_text;
};

/// The data of a definite-length block "#208*1X16DZ\r"; nothing when it is none.
std::optional<std::string> BlockData(std::string_view block);

/// How a block is written: one digit of length digits and as many as are needed, two length digits, or open-ended.
enum class BlockForm { Shortest, TwoDigits, OpenEnded };

class UutPort
{
public:
    /// Settings as UUT_SET tells them. The only ones that a meter understands are "9600,XON,DBIT8,SBIT1,PNONE".
    static bool CanBeSet(std::string_view settings);
    void Hear(std::string_view bytes) { m_waiting += bytes; }
    void Flush() { m_waiting.clear(); }
    /// All that waits, as a block without its CR LF. Each block takes the next of the three forms; data with a line
    /// end inside are never sent open-ended.
    std::string TakeBlock();
    /// From now on all blocks take this form.
    void UseForm(BlockForm form) { m_form = form; }

private:
    std::string m_waiting;
    std::optional<BlockForm> m_form;
    int m_blocks = 0;
};

}  // namespace ombrix::bench
