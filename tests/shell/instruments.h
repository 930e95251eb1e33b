// A meter and a calibrator that answer as simply as they can, on fake lines.
#pragma once

#include "links/meter_protocol.h"
#include "platform/text.h"
#include "support/fake_line.h"

#include <array>
#include <cstdint>
#include <string>

namespace ombrix::test {

/// Answers frames to address 1: words out of `words`, "65" for each byte, a display. Address 2 it leaves alone.
class PlainMeter
{
public:
    explicit PlainMeter(FakeLine &line) : m_line(line)
    {
        words[16] = 0x0060;
        words[21] = 0x0001;   // a DC board
        words[109] = 0x3201;  // a DPM of revision X2
        m_line.onWrite = [this](const std::string &bytes) { Hear(bytes); };
    }

    std::array<std::uint16_t, 256> words{};
    std::string display = "79990.";

private:
    void Hear(const std::string &bytes)
    {
        if (bytes.starts_with("*1") && bytes.ends_with('\r'))
            Obey(bytes.substr(2, bytes.size() - 3));
    }

    void Obey(const std::string &payload)
    {
        if (payload == "B1")
            m_line.Says(display + "\r", kAnswerMs);
        if (payload.size() < 4)
            return;
        const int count = static_cast<int>(kCountAlphabet.find(payload[1])) + 1;
        const int address = static_cast<int>(HexValue(payload.substr(2, 2)));
        if (payload[0] == 'X')
            m_line.Says(Words(address, count) + "\r", kAnswerMs);
        else if (payload[0] == 'G')
            m_line.Says(Bytes(count) + "\r", kAnswerMs);
        else if (payload[0] == 'W')
            Store(address, payload.substr(4));
    }

    static std::string Bytes(int count)
    {
        std::string text;
        for (int i = 0; i < count; i++)
            text += "65";
        return text;
    }

    std::string Words(int address, int count) const
    {
        std::string text;
        for (int i = 0; i < count; i++)
            text += HexText(words.at(static_cast<std::size_t>(address - i)), 4);
        return text;
    }

    void Store(int address, const std::string &hex)
    {
        for (std::size_t i = 0; i + 4 <= hex.size(); i += 4)
            words.at(static_cast<std::size_t>(address) - i / 4) =
                static_cast<std::uint16_t>(HexValue(hex.substr(i, 4)));
    }

    static constexpr int kAnswerMs = 20;
    FakeLine &m_line;
};

/// Answers each question at once and reaches each state.
class PlainCalibrator
{
public:
    explicit PlainCalibrator(FakeLine &line) : m_line(line)
    {
        m_line.onWrite = [this](const std::string &bytes) { Hear(bytes); };
    }

    bool operating = false;
    std::string output = "0.0000E00,V,0E+00,0,0.00E+00";

private:
    void Hear(const std::string &bytes)
    {
        if (bytes == "ERR?\n")
            Answer("0,\"No Error\"");
        else if (bytes == "OPER?\n")
            Answer(operating ? "1" : "0");
        else if (bytes == "OUT?\n")
            Answer(output);
        else if (bytes.starts_with("OUT "))
            operating = Holds(bytes, "OPER");
    }

    void Answer(const std::string &text) { m_line.Says(text + "\r\n", 20); }

    FakeLine &m_line;
};

}  // namespace ombrix::test
