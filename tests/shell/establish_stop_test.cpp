// Establish and the tab click against instruments that are stopped, silent or pulled.

#include "links/calibrator.h"
#include "links/calibrator_line.h"
#include "links/meter_identity.h"
#include "links/meter_protocol.h"
#include "platform/clock.h"
#include "session/state.h"
#include "shell/setup_page.h"
#include "support/bench_station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;
using testing::IsEmpty;

namespace {

/// What the station did to instruments since a line of the transcript: words, bytes and outputs set.
std::vector<std::string> WritesSince(const bench::Bench &bench, std::size_t line)
{
    std::vector<std::string> writes;
    const auto &transcript = bench.Transcript();
    for (std::size_t i = line; i < transcript.size(); ++i) {
        const std::string &text = transcript[i].text;
        const bool toMeter = text.size() > 2 && text[0] == '*' && (text[2] == 'W' || text[2] == 'F');
        const bool output = text.find("OPER ;") != std::string::npos;
        if (transcript[i].fromStation && (toMeter || output))
            writes.push_back(text);
    }
    return writes;
}

/// Exchanges of one Establish that runs to its end.
int ExchangesOf(BenchStation &station)
{
    const int before = station.bench.Exchanges();
    EXPECT_TRUE(station.Establishes());
    return station.bench.Exchanges() - before;
}

bool EndedRed(const std::string &status)
{
    return ScriptedOperator::Sees("lblStatus") && ScriptedOperator::Text("lblStatus") == status &&
           ScriptedOperator::Fill("shpStatus") == "#ff0000" && ScriptedOperator::IsEnabled("cmdEstablish");
}

void ExpectNoSession()
{
    EXPECT_FALSE(Established);
    EXPECT_FALSE(ScriptedOperator::IsEnabled("cmdSetup"));
    EXPECT_FALSE(ScriptedOperator::IsEnabled(StepButton(0)));
    EXPECT_FALSE(TabChangeAllowed);
}

constexpr int kOnTheLineMs = 40;  // a frame that was under way when the key came arrives all the same

class EstablishStopped : public testing::TestWithParam<int>
{
};

Wiring Counter()
{
    Wiring wiring;
    wiring.bench.board = kVf;
    wiring.bench.kind = kCtr;
    return wiring;
}

}  // namespace

TEST_P(EstablishStopped, ByEscAtAnyExchangeEndsRedAndWritesNothingAfterIt)
{
    Wiring wiring;
    wiring.useSwitch = true;
    const int exchanges = [&] {
        BenchStation whole(wiring);
        return ExchangesOf(whole);
    }();
    ASSERT_GT(exchanges, 12);
    BenchStation station(wiring);
    for (int exchange = 1; exchange <= exchanges; ++exchange) {
        SCOPED_TRACE("exchange " + std::to_string(exchange));
        const int stop = station.bench.Exchanges() + exchange;
        std::size_t said = 0;
        station.person.Waits(100);  // what was still on its way has come
        station.person.Clicks("cmdEstablish").WaitsUntil("it has come so far", [&] {
            return station.bench.Exchanges() >= stop;
        });
        station.person.Waits(GetParam()).Presses(Qt::Key_Escape).Waits(kOnTheLineMs).Does([&] {
            said = station.bench.Transcript().size();
        });
        station.person.WaitsUntil("it ends stopped", [] { return EndedRed("Stopped"); });
        ASSERT_TRUE(station.person.Runs());
        ExpectNoSession();
        EXPECT_THAT(WritesSince(station.bench, said), IsEmpty());
        EXPECT_FALSE(ScriptedOperator::Sees("lblEstablishing"));
    }
    EXPECT_TRUE(station.Establishes()) << "and the next one finds all as it was";
    EXPECT_THAT(station.bench.ProtocolErrors(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(WhenItComesAndInTheWaitBehindIt, EstablishStopped, testing::Values(0, 400));

TEST(EstablishOnBench, AMeterThatIsSilentWhenItsIdentityIsReadEndsItRed)
{
    for (int question = 0; question < 3; ++question) {
        SCOPED_TRACE("question " + std::to_string(question));
        Wiring wiring;
        wiring.bench.board = kTemp;
        BenchStation station(wiring);
        std::size_t said = 0;
        station.person.Clicks("cmdEstablish").WaitsUntil("the identity is read", [] {
            return ScriptedOperator::Text("lblEstablishing").starts_with("Meter: identity");
        });
        station.person.Does([&] {
            station.bench.FaultAtExchange("silent-meter", station.bench.Exchanges() + question, true);
            said = station.bench.Transcript().size();
        });
        station.person.WaitsUntil("it fails", [] { return EndedRed("The meter did not answer"); });
        ASSERT_TRUE(station.person.Runs());
        ExpectNoSession();
        EXPECT_THAT(WritesSince(station.bench, said), IsEmpty());
        station.bench.SwitchFault("silent-meter", false);
        ASSERT_TRUE(station.Establishes());
        EXPECT_EQ(SCType, kTemp);
    }
}

TEST(EstablishOnBench, AMeterThatIsSilentAtATabClickIsToldAndStaysWhatItWas)
{
    for (int question = 0; question < 3; ++question) {
        SCOPED_TRACE("question " + std::to_string(question));
        Wiring wiring;
        wiring.bench.board = kTemp;
        wiring.bench.xmtr = true;
        BenchStation station(wiring);
        ASSERT_TRUE(station.Establishes());
        station.bench.SetWord(16, 0x0040);  // Establish has put it to DC's
        station.person.ClicksTab(kTabTc).WaitsUntil("the tab is open", [] { return TabChangeAllowed; });
        ASSERT_TRUE(station.person.Runs());
        ASSERT_EQ(MeterSCType, kTemp);
        const std::string green = ScriptedOperator::Text("lblStatus");

        station.bench.FaultAtExchange("silent-meter", station.bench.Exchanges() + question, true);
        station.person.ClicksTab(kTabTc).WaitsUntil("it is told", [] {
            return ScriptedOperator::Sees("lblStatus") &&
                   ScriptedOperator::Text("lblStatus") == "The meter did not answer";
        });
        station.person.WaitsUntil("the steps are free", [] { return ScriptedOperator::IsEnabled(StepButton(0)); });
        ASSERT_TRUE(station.person.Runs());
        EXPECT_EQ(ScriptedOperator::Fill("shpStatus"), "#ff0000");
        EXPECT_TRUE(ScriptedOperator::Sees("fraCalib(1)"));
        EXPECT_TRUE(Established);
        EXPECT_EQ(MeterKind, kDpm);
        EXPECT_TRUE(XmtrFlag);
        EXPECT_EQ(MeterName, "DPM Xmtr");
        EXPECT_EQ(MeterSCType, kTemp);
        EXPECT_EQ(SCType, kTemp);
        EXPECT_EQ(MeterTab, kTabTc);
        EXPECT_FALSE(TabMismatch);

        station.bench.SwitchFault("silent-meter", false);
        station.person.ClicksTab(kTabTc).WaitsUntil("the tab is open", [] { return TabChangeAllowed; });
        station.person.Clicks("cmdSetup").WaitsFor("cmdSetup");
        ASSERT_TRUE(station.person.Runs());
        EXPECT_EQ(ScriptedOperator::Text("lblStatus"), green);
        EXPECT_EQ(ScriptedOperator::Fill("shpStatus"), "#00ff00");
    }
}

TEST(EstablishOnBench, EscAtATabClickIsToldAndTheMeterStaysWhatItWas)
{
    BenchStation station(Wiring{});
    ASSERT_TRUE(station.Establishes());
    station.person.ClicksTab(kTabDc).Waits(100).Presses(Qt::Key_Escape).WaitsUntil("it is told", [] {
        return ScriptedOperator::Sees("lblStatus") &&
               ScriptedOperator::Text("lblStatus") == "Stopped before the meter told its identity";
    });
    ASSERT_TRUE(station.person.Runs());
    EXPECT_EQ(MeterKind, kDpm);
    EXPECT_EQ(MeterSCType, kDc);
    EXPECT_TRUE(Established);
    EXPECT_FALSE(Abort);
}

TEST(EstablishOnBench, SaysWhatItDoesInTheStatusPlaceAndTheSecondsOfALongWait)
{
    BenchStation station(Wiring{});
    std::vector<std::string> seen;
    station.person.Clicks("cmdEstablish");
    for (int look = 0; look < 12; ++look) {
        station.person.Waits(1000).Does([&seen] {
            if (!ScriptedOperator::Sees("lblEstablishing"))
                return;
            seen.push_back(ScriptedOperator::Text("lblEstablishing"));
            EXPECT_FALSE(ScriptedOperator::Sees("lblStatus"));
            EXPECT_NE(ScriptedOperator::Fill("shpProgress"), "#00ff00");
            EXPECT_NE(ScriptedOperator::Fill("shpProgress"), "#ff0000");
        });
    }
    ASSERT_TRUE(station.person.Runs());
    EXPECT_THAT(seen, testing::Contains("Meter: identity ..."));
    EXPECT_THAT(seen, testing::Contains("Meter: identity ...  3 s"));
    EXPECT_THAT(seen, testing::Contains(testing::StartsWith("Meter: setup ...")));
    EXPECT_THAT(seen, testing::Not(testing::Contains(testing::EndsWith("  2 s"))));
    EXPECT_TRUE(Established);
    EXPECT_FALSE(ScriptedOperator::Sees("lblEstablishing"));
    EXPECT_TRUE(ScriptedOperator::Sees("lblStatus"));
}

TEST(EstablishOnBench, FirstSaysThatTheCalibratorIsReset)
{
    BenchStation station(Wiring{});
    station.bench.SwitchFault("silent-calibrator", true);
    station.person.Clicks("cmdEstablish").WaitsForText("lblEstablishing", "Calibrator: reset ...").Does([] {
        EXPECT_TRUE(ScriptedOperator::Sees("lblEstablishing"));
    });
    station.person.WaitsUntil("it fails", [] { return EndedRed("Error on COM2: Calibrator not found"); });
    ASSERT_TRUE(station.person.Runs());
    EXPECT_FALSE(ScriptedOperator::Sees("lblEstablishing"));
}

TEST(EstablishOnBench, EscWhileTheBoardDialogsAnswerIsWrittenEndsItStopped)
{
    BenchStation station(Wiring{});
    station.bench.SetWord(21, 0);
    std::size_t said = 0;
    station.person.Clicks("cmdEstablish").WaitsFor("dlgSCType").Presses(Qt::Key_Escape).Waits(100).Does([] {
        EXPECT_TRUE(ScriptedOperator::Sees("dlgSCType")) << "Esc is no answer";
    });
    station.person.Clicks("optSC(2)").Clicks("OKButton").Waits(300).Presses(Qt::Key_Escape);
    station.person.Does([&] { said = station.bench.Transcript().size(); });
    station.person.WaitsUntil("it ends stopped", [] { return EndedRed("Stopped"); });
    ASSERT_TRUE(station.person.Runs());
    ExpectNoSession();
    EXPECT_THAT(WritesSince(station.bench, said), IsEmpty());
}

TEST(EstablishOnBench, ACalibratorThatIsWiredOtherwiseGoesToStandbyFirst)
{
    BenchStation station(Wiring{});
    ASSERT_TRUE(station.Establishes());
    SetCalibratorOutput("20 V", "OPER");
    ASSERT_TRUE(station.bench.CalibratorNow().operating);
    station.person.Clicks("optManual").Clicks("cmdEstablish").WaitsFor("cmdSetup");
    ASSERT_TRUE(station.person.Runs());
    EXPECT_FALSE(station.bench.CalibratorNow().operating);
    EXPECT_FALSE(station.bench.CalibratorNow().remote);
    EXPECT_FALSE(comCAL.IsOpen());
}

TEST(QuitOnBench, ACounterThatWasPulledAndPutBackKeepsItsWords)
{
    BenchStation station(Counter());
    ASSERT_TRUE(station.Establishes());
    for (const int word : {5, 4, 3})
        station.bench.SetWord(word, static_cast<std::uint16_t>(0x1110 + word));
    station.bench.SwitchFault("silent-meter", true);
    station.person.ClicksTab(kTabVf).WaitsForText("lblStatus", "The meter did not answer").WaitsFor("cmdSetup");
    ASSERT_TRUE(station.person.Runs());
    station.bench.SwitchFault("silent-meter", false);
    const std::size_t said = station.bench.Transcript().size();
    station.person.Clicks("cmdQuit");
    station.person.Runs();
    EXPECT_TRUE(Quitting);
    EXPECT_THAT(WritesSince(station.bench, said), IsEmpty());
    for (const int word : {5, 4, 3})
        EXPECT_EQ(station.bench.Nvm().at(static_cast<std::size_t>(word)), 0x1110 + word);
}

TEST(QuitOnBench, AMeterOfUnknownKindIsLeftAsItIs)
{
    BenchStation station(Wiring{});
    ASSERT_TRUE(station.Establishes());
    station.bench.SetWord(109, 0x3200);  // another meter, whose type nobody has written
    station.person.ClicksTab(kTabDc).WaitsUntil("the tab is open", [] { return TabChangeAllowed; });
    ASSERT_TRUE(station.person.Runs());
    ASSERT_LT(MeterKind, 0);
    const std::size_t said = station.bench.Transcript().size();
    station.person.Clicks("cmdQuit");
    station.person.Runs();
    EXPECT_TRUE(Quitting);
    EXPECT_THAT(WritesSince(station.bench, said), IsEmpty());
    EXPECT_GT(station.bench.Transcript().size(), said) << "the calibrator hears its last words";
}

namespace {

class QuitWhileTheMeterRestarts : public testing::TestWithParam<int>
{
};

}  // namespace

TEST_P(QuitWhileTheMeterRestarts, SaysStandbyAtOnceAndTheDisplaySetupWhenItHears)
{
    BenchStation station(Wiring{});
    ASSERT_TRUE(station.Establishes());
    std::size_t said = 0;
    std::int64_t clicked = 0;
    station.person.ClicksTab(kTabDc).Waits(GetParam()).Does([&] {
        said = station.bench.Transcript().size();
        clicked = NowMicros();
    });
    station.person.Clicks("cmdQuit");
    station.person.Runs();
    ASSERT_TRUE(Quitting);
    EXPECT_LT(NowMicros() - clicked, 4'000'000);
    const auto &transcript = station.bench.Transcript();
    ASSERT_GT(transcript.size(), said);
    std::size_t standby = said;
    while (standby < transcript.size() && transcript[standby].text.find("STBY") == std::string::npos)
        ++standby;
    ASSERT_LT(standby, transcript.size());
    EXPECT_LT(transcript[standby].time - clicked, 100'000);
    EXPECT_EQ(station.bench.Nvm()[3], 1) << station.bench.LastWords();
    EXPECT_THAT(station.bench.ProtocolErrors(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(AfterTheTabClick, QuitWhileTheMeterRestarts,
                         testing::Values(0, 250, 520, 900, 1500, 2100, 2300, 2700, 3000, 3600));
