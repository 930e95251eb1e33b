#include "support/bench_log.h"

#include <string_view>

namespace ombrix::test {
namespace {

std::string WithoutLineEnd(const std::string &text)
{
    for (const std::string_view end : {"\\r", "\\n"})
        if (text.ends_with(end))
            return text.substr(0, text.size() - end.size());
    return text;
}

// Bytes behind a readable text.
std::int64_t BytesOf(const std::string &text)
{
    std::int64_t bytes = 0;
    for (std::size_t at = 0; at < text.size(); ++bytes) {
        if (text[at] == '\\')
            at += text[at + 1] == 'x' ? 4 : 2;
        else
            at += 1;
    }
    return bytes;
}

// The bench hears a frame when its last byte has come.
std::int64_t Began(const bench::TranscriptLine &line)
{
    return line.time - BytesOf(line.text) * bench::kByteMicros;
}

}  // namespace

std::vector<std::string> FramesTo(const bench::Bench &bench, bench::Line line, std::int64_t fromMicros)
{
    std::vector<std::string> frames;
    for (const bench::TranscriptLine &said : bench.Transcript())
        if (said.fromStation && said.line == line && Began(said) >= fromMicros)
            frames.push_back(WithoutLineEnd(said.text));
    return frames;
}

std::vector<std::int64_t> TimesOf(const bench::Bench &bench, const std::string &frame, std::int64_t fromMicros)
{
    std::vector<std::int64_t> times;
    for (const bench::TranscriptLine &said : bench.Transcript())
        if (said.fromStation && WithoutLineEnd(said.text) == frame && Began(said) >= fromMicros)
            times.push_back((Began(said) - fromMicros) / 1000);
    return times;
}

}  // namespace ombrix::test
