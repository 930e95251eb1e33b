#include "fuzz/support/case.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>

namespace ombrix::fuzz {

void Require(bool holds, std::string_view rule)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken rule: %.*s\n", static_cast<int>(rule.size()), rule.data());
    std::abort();
}

Case::Case(const std::uint8_t *bytes, std::size_t size) : m_rest(reinterpret_cast<const char *>(bytes), size) {}

int Case::Byte()
{
    if (m_rest.empty())
        return 0;
    const auto byte = static_cast<unsigned char>(m_rest.front());
    m_rest.remove_prefix(1);
    return byte;
}

std::int64_t Case::Long()
{
    std::uint64_t number = 0;
    for (unsigned i = 0; i < 8; ++i)
        number |= static_cast<std::uint64_t>(Byte()) << (8 * i);
    return static_cast<std::int64_t>(number);
}

std::string Case::Bytes(std::size_t count)
{
    std::string bytes(m_rest.substr(0, count));
    m_rest.remove_prefix(bytes.size());
    return bytes;
}

std::string Case::Line()
{
    std::string line(m_rest.substr(0, m_rest.find('\n')));
    m_rest.remove_prefix(std::min(line.size() + 1, m_rest.size()));
    return line;
}

std::string Case::Rest()
{
    return Bytes(m_rest.size());
}

std::vector<std::string> Pieces(std::string_view text, int seed)
{
    if (seed == 0)
        return {std::string(text)};
    std::minstd_rand random(static_cast<unsigned>(seed));
    std::vector<std::string> pieces;
    while (!text.empty()) {
        pieces.emplace_back(text.substr(0, 1 + random() % 16));
        text.remove_prefix(pieces.back().size());
    }
    return pieces;
}

bool IsPrintable(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

bool IsShown(std::string_view text)
{
    std::string plain(text);
    for (const std::string_view sign : {"°", "Ω", "Ω"})  // two ways to write an ohm
        for (std::size_t at = plain.find(sign); at != std::string::npos; at = plain.find(sign))
            plain.erase(at, sign.size());
    return IsPrintable(plain);
}

std::string UpperHex(std::string_view text)
{
    std::string upper(text);
    for (char &c : upper)
        if (c >= 'a' && c <= 'f')
            c = static_cast<char>(c - 'a' + 'A');
    return upper;
}

}  // namespace ombrix::fuzz
