// What all targets share: a case taken apart, and a rule that must hold for it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ombrix::fuzz {

/// A broken rule ends the program: that is what a fuzzer takes for a finding. The rule is told on standard error.
void Require(bool holds, std::string_view rule);

/// The bytes of one case, used up from the front.
class Case
{
public:
    Case(const std::uint8_t *bytes, std::size_t size);

    bool IsOver() const { return m_rest.empty(); }
    /// 0 to 255; 0 when the case is over.
    int Byte();
    /// 0 to count - 1, of one byte: no more than 255.
    int Below(int count) { return Byte() % count; }
    /// A number of eight bytes, the lowest first; what is missing is 0.
    std::int64_t Long();
    /// So many bytes, or what is left.
    std::string Bytes(std::size_t count);
    /// Up to the next LF, which goes too.
    std::string Line();
    std::string Rest();

private:
    std::string_view m_rest;
};

/// A text in pieces of 1 to 16 bytes, in a way that follows from `seed`; 0 leaves it whole.
std::vector<std::string> Pieces(std::string_view text, int seed);

bool IsPrintable(std::string_view text);
/// The same, and the signs of degrees and ohms.
bool IsShown(std::string_view text);
std::string UpperHex(std::string_view text);

}  // namespace ombrix::fuzz
