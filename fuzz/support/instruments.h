// The far ends of both lines on virtual time, for targets that reach a parser through the links.
#pragma once

#include "support/fake_line.h"
#include "support/virtual_clock.h"

#include <memory>
#include <string>
#include <vector>

namespace ombrix::fuzz {

/// Both lines open, the meter on a port of its own; everything as at the start of the program.
class Instruments
{
public:
    Instruments();
    ~Instruments();
    Instruments(const Instruments &) = delete;
    Instruments &operator=(const Instruments &) = delete;

    /// The meter hangs on the calibrator's meter port.
    void UseUutRoute();

    test::VirtualClock clock;
    test::FakeLines lines{clock};
    test::FakeLine &meter = lines["meter"];
    test::FakeLine &calibrator = lines["calibrator"];
};

/// Lets a line say the pieces of a text, the first after `afterMs`, the others `gapMs` apart.
void SayInPieces(test::FakeLine &line, const std::vector<std::string> &pieces, int afterMs, int gapMs);

}  // namespace ombrix::fuzz
