// A meter as it comes from the soldering bench, and the operator's first steps with it.
#pragma once

#include "journeys/page_loops.h"
#include "session/state.h"

namespace ombrix::test {

struct BlankMeter {
    int board;
    int option;  ///< of the dialog that asks for the board
};

inline Wiring WiringOfBlank(int board)
{
    Wiring wiring;
    wiring.bench.board = board;
    wiring.bench.kind = board == kVf ? kCtr : kDpm;
    wiring.bench.seed = 5;
    return wiring;
}

/// A counter keeps its type, and the character that its frames begin with.
inline void Erase(BenchStation &station, int board)
{
    constexpr std::uint16_t kErased = 0xFFFF;
    constexpr int kTypeWord = 109;
    constexpr int kRecognitionWord = 40;
    for (int word = 0; word <= 56; ++word)
        if (board != kVf || word != kRecognitionWord)
            station.bench.SetWord(word, kErased);
    if (board != kVf)
        station.bench.SetWord(kTypeWord, kErased);
}

/// A counter carries the VF board and no other, so nobody is asked.
inline void EstablishesAndNamesTheBoard(BenchStation &station, const BlankMeter &meter)
{
    station.person.Clicks("cmdEstablish");
    if (meter.board != kVf)
        station.person.Clicks("optSC(" + std::to_string(meter.option) + ")").Clicks("OKButton");
    station.person.WaitsUntil("the steps are free", NavigationIsFree);
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    ASSERT_EQ(SCType, meter.board);
}

}  // namespace ombrix::test
