// A meter and a calibrator at the far ends of the station's two lines. The meter has words, and a display that follows
// the calibrator as far as its gain word is right; the calibrator does at once what it is told.
#pragma once

#include "platform/text.h"
#include "support/fake_line.h"
#include "support/virtual_clock.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace ombrix::test {

class FakeInstruments
{
public:
    /// A DC meter on COM1, the calibrator on COM2.
    explicit FakeInstruments(VirtualClock &clock)
        : lines(clock), meter(lines["/dev/ttyS0"]), calibrator(lines["/dev/ttyS1"])
    {
        words[109] = 0x3201;
        words[21] = 0x0001;
        words[16] = 0x0060;
        meter.onWrite = [this](const std::string &frame) { HearMeter(frame); };
        calibrator.onWrite = [this](const std::string &line) { HearCalibrator(line); };
    }

    FakeLines lines;
    FakeLine &meter;
    FakeLine &calibrator;

    std::array<std::uint16_t, 256> words{};
    bool meterSilent = false;
    bool displaySilent = false;
    std::string output = "0 V";
    bool operating = false;

    int gainWord = 32;        ///< the word that the range in work trims
    float goodWord = 0x8A00;  ///< its value when the range is right
    std::int32_t target = 80000;
    std::int32_t drift = 0;  ///< counts beside the reading, added to its size

    /// What was said on both lines, in order: "cal OUT 2 V ; OPER ; *WAI", "meter 1B1".
    std::vector<std::string> log;

    std::int32_t Reading() const
    {
        const float base = 229376;
        const float gain = (static_cast<float>(words[static_cast<std::size_t>(gainWord)]) + base) / (goodWord + base);
        const auto size = static_cast<std::int32_t>(std::lround(static_cast<float>(target) * gain)) + drift;
        if (!operating)
            return 0;
        return output.starts_with("-") ? -size : size;
    }

private:
    void HearMeter(const std::string &bytes)
    {
        const std::string frame = bytes.substr(1, bytes.size() - 2);
        log.push_back("meter " + frame);
        if (meterSilent || frame.front() != '1')
            return;
        const std::size_t count = frame.size() > 2 ? HexValue(frame.substr(2, 1)) : 0;
        const std::size_t address = frame.size() > 4 ? HexValue(frame.substr(3, 2)) : 0;
        switch (frame[1]) {
        case 'B':
            if (!displaySilent)
                meter.Says(std::to_string(Reading()) + ".\r");
            break;
        case 'G':
            meter.Says(std::string(count * 2, '6') + "\r");
            break;
        case 'X': {
            std::string reply;
            for (std::size_t i = 0; i < count; ++i)
                reply += HexText(words[address - i], 4);
            meter.Says(reply + "\r");
            break;
        }
        case 'W':
            for (std::size_t i = 0; i < count; ++i)
                words[address - i] = static_cast<std::uint16_t>(HexValue(frame.substr(5 + 4 * i, 4)));
            break;
        default:
            break;
        }
    }

    void HearCalibrator(const std::string &line)
    {
        const std::string command = Trim(line);
        log.push_back("cal " + command);
        if (command == "ERR?")
            calibrator.Says("0,\"No Error\"\r\n");
        else if (command == "OPER?")
            calibrator.Says(operating ? "1\r\n" : "0\r\n");
        else if (command == "OUT?")
            calibrator.Says(FormatExponent(Val(output)) + ",V,0E+00,0,0.00E+00\r\n");
        else if (command.starts_with("OUT ")) {
            output = Trim(command.substr(4, command.find(';') - 4));
            operating = Holds(command, "OPER");
        }
    }
};

}  // namespace ombrix::test
