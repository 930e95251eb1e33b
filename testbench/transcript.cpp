#include "testbench/transcript.h"

#include "platform/text.h"

namespace ombrix::bench {

std::string TranscriptText(const TranscriptLine &line)
{
    const std::string who = line.line == Line::Meter ? "meter      " : "calibrator ";
    std::string text = Format(static_cast<double>(line.time) / 1e6, 6) + (line.fromStation ? " > " : " < ") + who;
    text += line.text;
    return line.note.empty() ? text : text + "  (" + line.note + ")";
}

std::string TranscriptText(const std::vector<TranscriptLine> &lines, std::size_t last)
{
    std::string text;
    const std::size_t first = lines.size() > last ? lines.size() - last : 0;
    for (std::size_t i = first; i < lines.size(); ++i)
        text += TranscriptText(lines[i]) + "\n";
    return text;
}

}  // namespace ombrix::bench
