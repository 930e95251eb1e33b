// Frames as a meter hears them: bytes to frames, frames to commands.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "testbench/wire.h"

namespace ombrix::bench {

/// What came before a CR, and when its first byte came.
struct Frame {
    std::string text;
    Micros began;
};

/// Gathers bytes to frames. Bytes of an unended frame are kept until their CR comes.
class FrameReader
{
public:
    std::optional<Frame> Take(char byte, Micros now);
    void Clear() { m_text.clear(); }

private:
    std::string m_text;
    Micros m_began = 0;
};

struct MeterCommand {
    char meter = '1';  ///< address of the meter
    char letter = 0;
    int count = 0;      ///< words of X and W, bytes of G and F
    int address = 0;    ///< the highest of the run
    std::string data;   ///< hexadecimal digits of W and F
    bool goOn = false;  ///< ends in Z: the meter doesn't restart
    char variant = 0;   ///< second character of A, B, C, V
};

struct ParsedFrame {
    std::optional<MeterCommand> command;
    std::string trouble;  ///< what a meter can't understand in it; "" when there is a command
};

/// text without its CR.
ParsedFrame ParseFrame(std::string_view text);

/// Bytes as one readable line: "*1B1\r" shows its CR as \r, others as \xNN.
std::string Readable(std::string_view bytes);

}  // namespace ombrix::bench
