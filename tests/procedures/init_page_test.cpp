#include "platform/fault.h"
#include "platform/text.h"
#include "session/outlets.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "shell/main_window.h"
#include "support/factory_images.h"
#include "support/journal_events.h"
#include "support/page_test.h"

#include <QCoreApplication>
#include <QMainWindow>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace ombrix::test {
namespace {

using testing::HasSubstr;

constexpr int kInit = 0;  // position on every board
constexpr const char *kGreen = "#00ff00";
constexpr const char *kRed = "#ff0000";

std::string SimulatedWords(int top, int count)
{
    std::string text;
    for (int word = top; word > top - count; --word)
        text += HexText(SimNvm[static_cast<std::size_t>(word)], 4);
    return text;
}

std::vector<std::string> ListOf(const JournalEvent &event, const std::string &name)
{
    return std::get<std::vector<std::string>>(FieldOf(event, name)->is);
}

class SimulatedInit : public SimulatedPage
{
protected:
    /// Opens the page with a memory that holds nothing of the image.
    ScriptedOperator &Opens()
    {
        std::fill(SimNvm.begin(), SimNvm.begin() + 202, 0xAAAA);
        return person->Clicks(StepButton(kInit)).WaitsFor("cmdInitStartRetry");
    }
};

class WiredInit : public WiredPage
{
protected:
    void Opens(int board = kDc)
    {
        bench::BenchSetup setup;
        setup.board = board;
        setup.kind = board == kVf ? kCtr : kDpm;
        Stands(setup);
        ASSERT_NO_FATAL_FAILURE(Establishes());
        person->Clicks(StepButton(kInit)).WaitsFor("cmdInitStartRetry").Does([this] { Forget(); });
        ASSERT_TRUE(person->Runs()) << person->Trouble();
    }

    /// From the click until the run has ended by itself.
    void Starts()
    {
        person->Clicks("cmdInitStartRetry").WaitsFor("cmdDone(0)");
        ASSERT_TRUE(person->Runs()) << person->Trouble();
    }

    std::string Words(int top, int count) const
    {
        std::string text;
        for (int word = top; word > top - count; --word)
            text += HexText(WordOf(static_cast<std::size_t>(word)), 4);
        return text;
    }

    /// The next reply to this question is what the meter holds behind the image, but for one digit of a word.
    void AnswersOnceWith(const std::string &question, int top, int count, int word, std::size_t digit)
    {
        std::string reply =
            FactoryImageOf(kDc).substr(static_cast<std::size_t>(56 - top) * 4, static_cast<std::size_t>(count) * 4);
        char &changed = reply[static_cast<std::size_t>(top - word) * 4 + digit];
        changed = changed == '9' ? '8' : '9';
        bench->AnswerNext(bench::Line::Meter, reply + "\r", question);
    }
};

const std::string kImage = FactoryImageOf(kDc);
const std::string kHigh = kImage.substr(0, 29 * 4);  // words 56..28
const std::string kLow = kImage.substr(29 * 4);      // words 27..0
const std::vector<std::string> kAttempt = {"*1W1750000Z", "*1WS1B" + kLow + "Z", "*1WT38" + kHigh, "*1X175Z", "*1XS1BZ",
                                           "*1XT38"};

}  // namespace

TEST_F(SimulatedInit, ShowsWhatWillBeWrittenAndWaitsForStart)
{
    Establishes();
    Opens().Does([] {
        EXPECT_EQ(Text("lblInitStatus"), "Click \"Start\" to Initialize NVM");
        EXPECT_EQ(Fill("shpInitStatus"), kCyan);
        EXPECT_EQ(Text("cmdInitStartRetry"), "Start");
        EXPECT_TRUE(HasFocus("cmdInitStartRetry"));
        EXPECT_TRUE(IsEnabled("cmdDone(0)"));
        EXPECT_FALSE(IsEnabled("cmdInitCancel"));
        EXPECT_TRUE(Sees("fraNVMemVals"));
        EXPECT_EQ(Text("lblMemVal(0)"), "S/C TYPE = DC");
        EXPECT_EQ(Text("lblMemVal(1)"), "DC 200 mV");
        EXPECT_EQ(Text("lblMemVal(12)"), "HI RD = 20000");
        EXPECT_EQ(Text("lblMemVal(24)"), "RD0 = 0");
        EXPECT_FALSE(Sees("lblMemVal(25)"));
        EXPECT_EQ(SimulatedWords(56, 1), "AAAA") << "nothing is written yet";
        EXPECT_TRUE(IsEnabled("cmdSetup"));
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedInit, WritesTheWholeImageAndSaysSo)
{
    Establishes();
    Opens().Clicks("cmdInitStartRetry").WaitsFor("cmdDone(0)").Does([] {
        EXPECT_EQ(Text("lblInitStatus"), "NVM Initialized Successfully");
        EXPECT_EQ(Fill("shpInitStatus"), kGreen);
        EXPECT_EQ(Text("cmdInitStartRetry"), "Start");
        EXPECT_TRUE(HasFocus("cmdDone(0)"));
        EXPECT_TRUE(IsEnabled("cmdInitStartRetry"));
        EXPECT_FALSE(IsEnabled("cmdInitCancel"));
        EXPECT_TRUE(IsEnabled("cmdSetup"));
    });
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(SimulatedWords(56, 57), FactoryImageOf(kDc));
    EXPECT_EQ(SimNvm[117], 0);
    EXPECT_EQ(SimNvm[57], 0xAAAA) << "beside the image nothing is touched";
}

TEST_F(SimulatedInit, TakesWhatTheStationHasLearned)
{
    Establishes();
    person->Clicks(StepButton(2)).WaitsFor("cmdReady").Clicks("cmdReady").WaitsFor("cmdRepeat").Clicks("cmdAccept");
    person->WaitsUntil("the next step is open", StandsAt(3));
    Opens().Clicks("cmdInitStartRetry").WaitsFor("cmdDone(0)");
    ASSERT_TRUE(person->Runs());
    const auto learned = EventsOf("learned");
    ASSERT_FALSE(learned.empty());
    EXPECT_NE(SimulatedWords(26, 1), "0000") << "a tenth of the way to the word of that meter";
}

TEST_F(SimulatedInit, DoneGoesToTheNextStepAlsoWithoutAnImage)
{
    Establishes();
    Opens().Clicks("cmdDone(0)").WaitsUntil("another step is open", [] { return CurrentStepButton > 0; });
    ASSERT_TRUE(person->Runs());
    EXPECT_FALSE(Sees("fraNVMemVals")) << "it belongs to the page";
    EXPECT_EQ(SimulatedWords(56, 1), "AAAA");
}

TEST_F(SimulatedInit, ThatWasProvenCountsAlsoWhenCancelCameMeanwhile)
{
    Establishes();
    Opens()
        .Clicks("cmdInitStartRetry")
        .Does([] {
            EXPECT_EQ(Text("lblInitStatus"), "Initializing NVM");
            EXPECT_FALSE(IsEnabled("cmdInitStartRetry"));
            EXPECT_FALSE(IsEnabled("cmdDone(0)"));
            EXPECT_FALSE(IsEnabled("cmdSetup"));
            EXPECT_FALSE(IsEnabled(StepButton(2)));
        })
        .Clicks("cmdInitCancel")
        .WaitsFor("cmdDone(0)");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(SimulatedWords(56, 57), FactoryImageOf(kDc));
    EXPECT_EQ(Text("lblInitStatus"), "NVM Initialized Successfully");
    EXPECT_EQ(Fill("shpInitStatus"), kGreen);
    EXPECT_EQ(Text("cmdInitStartRetry"), "Start");
    EXPECT_THAT(Text("lblInitProof"), HasSubstr("the meter holds the image"));
    EXPECT_EQ(TextOf(EventsOf("initialized").at(0), "how"), "proven");
    EXPECT_FALSE(Abort);
}

TEST_F(SimulatedInit, OnVfWritesTheNominalTextsOfTheRangesToo)
{
    SimNvm[109] = 0x3203;
    person->DoubleClicks("lblCalOut").Clicks("cmdEstablish").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    ASSERT_EQ(SCType, kVf) << Text("lblStatus");
    Opens().Does([] { EXPECT_EQ(Text("lblMemVal(20)"), "GATE TIME = 3.0"); });
    person->Clicks("cmdInitStartRetry").WaitsForText("lblInitStatus", "NVM Initialized Successfully");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(SimulatedWords(201, 9), "FF77451428F6FFD9B81028F6FFD9B8100000");
    EXPECT_EQ(SimulatedWords(49, 6) + SimulatedWords(40, 23) + SimulatedWords(17, 18), FactoryImageOf(kVf));
    EXPECT_EQ(SimulatedWords(43, 3), "AAAAAAAAAAAA") << "words between the runs stay";
}

TEST_F(SimulatedInit, TellsTheJournalWhatWasWrittenAndWhatCameBackAndTakesTheMarksOff)
{
    Establishes();
    const auto mark = [] { return Text("lblStepMark(2)"); };
    person->Clicks(StepButton(2)).WaitsFor("cmdReady").Clicks("cmdReady").WaitsFor("cmdRepeat").Clicks("cmdAccept");
    person->WaitsUntil("the next step is open", StandsAt(3));
    ASSERT_TRUE(person->Runs());
    ASSERT_NE(mark(), "");
    Opens().Clicks("cmdInitStartRetry").WaitsFor("cmdDone(0)");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(mark(), "") << "the accepted word no longer stands in the meter";
    const auto written = EventsOf("words written");
    ASSERT_EQ(written.size(), 1U);
    EXPECT_EQ(ListOf(written[0], "words").size(), 58U);
    EXPECT_EQ(ListOf(written[0], "words").front(), "75");
    EXPECT_EQ(ListOf(written[0], "words")[1], "38");
    EXPECT_EQ(ListOf(written[0], "words").back(), "00");
    const auto ended = EventsOf("initialized");
    ASSERT_EQ(ended.size(), 1U);
    EXPECT_EQ(TextOf(ended[0], "how"), "proven");
    EXPECT_EQ(ListOf(ended[0], "readBack"), ListOf(ended[0], "written"));
}

TEST_F(SimulatedInit, FitsASmallWindowWithoutScrolling)
{
    Establishes();
    Opens().Clicks("cmdInitStartRetry").Clicks("cmdInitCancel").WaitsFor("cmdDone(0)");
    ASSERT_TRUE(person->Runs());
    ASSERT_TRUE(Sees("lblInitProof")) << "the page at its fullest";
    frmOmbrix->resize(960, 504);
    QCoreApplication::processEvents();
    auto *place = qobject_cast<QScrollArea *>(PageFrame(2)->parentWidget()->parentWidget());
    ASSERT_TRUE(place);
    EXPECT_EQ(place->verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(place->horizontalScrollBar()->maximum(), 0);
}

// ---- on the wire ----

TEST_F(WiredInit, WritesTheImageInTwoBlocksAndReadsAllOfItBack)
{
    ASSERT_NO_FATAL_FAILURE(Opens());
    ASSERT_NO_FATAL_FAILURE(Starts());
    EXPECT_EQ(Said(), kAttempt);
    EXPECT_EQ(Words(56, 57), kImage);
    EXPECT_EQ(Text("lblInitStatus"), "NVM Initialized Successfully");
}

TEST_F(WiredInit, OfVfWritesAndReadsFourRuns)
{
    ASSERT_NO_FATAL_FAILURE(Opens(kVf));
    ASSERT_NO_FATAL_FAILURE(Starts());
    const std::string image = FactoryImageOf(kVf);
    EXPECT_EQ(Said(),
              (std::vector<std::string>{"*1W9C9FF77451428F6FFD9B81028F6FFD9B8100000Z",
                                        "*1W631" + image.substr(0, 24) + "Z", "*1WN28" + image.substr(24, 92) + "Z",
                                        "*1WI11" + image.substr(116), "*1X9C9Z", "*1X631Z", "*1XN28Z", "*1XI11"}));
    EXPECT_EQ(Words(49, 6) + Words(40, 23) + Words(17, 18), image);
    EXPECT_EQ(Text("lblInitStatus"), "NVM Initialized Successfully");
}

TEST_F(WiredInit, CountsAsWrittenWhateverTheHighByteOfTheFilterWordSays)
{
    ASSERT_NO_FATAL_FAILURE(Opens());
    AnswersOnceWith("X"
                    "S1B",
                    27, 28, 17, 1);
    ASSERT_NO_FATAL_FAILURE(Starts());
    EXPECT_EQ(Said(), kAttempt) << "one attempt";
    EXPECT_EQ(Text("lblInitStatus"), "NVM Initialized Successfully");
}

TEST_F(WiredInit, NamesTheWordThatDiffersWaitsASecondAndTriesAgain)
{
    ASSERT_NO_FATAL_FAILURE(Opens());
    AnswersOnceWith("X"
                    "S1B",
                    27, 28, 17, 2);
    std::string told;
    person->Clicks("cmdInitStartRetry")
        .WaitsUntil("the first attempt has failed", [] { return Sees("lblInitProof"); })
        .Does([&] { told = Text("lblInitProof"); })
        .WaitsUntil("the status line tells the second one",
                    [] { return Text("lblKeptRemark").starts_with("Initializing NVM: attempt 2, "); })
        .WaitsFor("cmdDone(0)");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("lblKeptRemark"), "") << "it is over";
    EXPECT_THAT(told, testing::MatchesRegex("Attempt 1, [0-9]+ s: words 17 differ"));
    std::vector<std::string> twice = kAttempt;
    twice.insert(twice.end(), kAttempt.begin(), kAttempt.end());
    EXPECT_EQ(Said(), twice);
    EXPECT_EQ(Text("lblInitStatus"), "NVM Initialized Successfully");
    const auto reads = TimesOf("*1XT38");
    const auto writes = TimesOf("*1W1750000Z");
    ASSERT_EQ(writes.size(), 2U);
    EXPECT_NEAR(static_cast<double>(writes[1] - reads.at(0)), 500 + 1750 + 1000, 5)
        << "its reply, its restart, then the pause";
}

TEST_F(WiredInit, TriesASilentMeterUntilCancelAndRetryDoesTheSame)
{
    ASSERT_NO_FATAL_FAILURE(Opens());
    bench->SwitchFault("silent-meter", true);
    person->Clicks("cmdInitStartRetry").Waits(60'000).Does([] {
        EXPECT_EQ(Text("lblInitStatus"), "Initializing NVM");
        EXPECT_THAT(Text("lblInitProof"), HasSubstr("the meter did not answer"));
    });
    person->Clicks("cmdInitCancel").WaitsFor("cmdDone(0)");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(Text("lblInitStatus"), "NVM Initialization Failed");
    EXPECT_EQ(Text("cmdInitStartRetry"), "Retry");
    EXPECT_GT(TimesOf("*1W1750000Z").size(), 5U);
    EXPECT_EQ(TimesOf("*1WT38" + kHigh).size(), TimesOf("*1W1750000Z").size()) << "no attempt was left half written";
    bench->SwitchFault("silent-meter", false);
    Forget();
    ASSERT_NO_FATAL_FAILURE(Starts());
    EXPECT_EQ(Said(), kAttempt);
    EXPECT_EQ(Text("lblInitStatus"), "NVM Initialized Successfully");
    EXPECT_EQ(Text("cmdInitStartRetry"), "Start");
}

TEST_F(WiredInit, ThatWasCancelledBeforeItWasReadBackHasFailedAlsoWhenTheMeterHasTakenTheImage)
{
    ASSERT_NO_FATAL_FAILURE(Opens());
    person->Clicks("cmdInitStartRetry").Waits(100).Clicks("cmdInitCancel").WaitsFor("cmdDone(0)");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(Said(), kAttempt) << "the attempt that had begun was finished";
    EXPECT_EQ(Words(56, 57), kImage);
    EXPECT_EQ(Text("lblInitStatus"), "NVM Initialization Failed");
    EXPECT_EQ(Fill("shpInitStatus"), kRed);
    EXPECT_EQ(Text("cmdInitStartRetry"), "Retry");
    EXPECT_TRUE(HasFocus("cmdDone(0)"));
    EXPECT_THAT(Text("lblInitProof"), testing::EndsWith("s: broken off before it was proven"));
    const auto ended = EventsOf("initialized");
    ASSERT_EQ(ended.size(), 1U);
    EXPECT_EQ(TextOf(ended[0], "how"), "cancelled");
    EXPECT_EQ(FieldOf(ended[0], "differing"), nullptr) << "nobody has compared it";
}

TEST_F(WiredInit, ThatWasProvenJustBeforeCancelIsGreenAlsoOnTheWire)
{
    ASSERT_NO_FATAL_FAILURE(Opens());
    person->Clicks("cmdInitStartRetry")
        .WaitsUntil("the last question is answered", [this] { return TimesOf("*1XT38").size() == 1; })
        .Waits(1000)
        .Clicks("cmdInitCancel")
        .WaitsFor("cmdDone(0)");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(Text("lblInitStatus"), "NVM Initialized Successfully");
}

TEST_F(WiredInit, ThatAFaultBrokeOffClaimsNothingOfTheMeter)
{
    ASSERT_NO_FATAL_FAILURE(Opens());
    const auto told = FaultOutlet;
    std::string words;
    FaultOutlet = [&words](const std::string &text) { words = text; };
    bool thrown = false;
    outlets.showWait = [&thrown](const std::string &text) {
        if (text == "Meter restarts" && !std::exchange(thrown, true))
            throw std::runtime_error("out of order");
    };
    person->Clicks("cmdInitStartRetry").WaitsFor("cmdDone(0)");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    FaultOutlet = told;
    EXPECT_EQ(words, "out of order");
    EXPECT_EQ(Text("lblInitStatus"), "NVM Initialization Failed");
    EXPECT_THAT(Text("lblInitProof"), testing::EndsWith("broken off before it was proven: out of order"));
    EXPECT_EQ(ListOf(EventsOf("words written").at(0), "words").size(), 58U) << "what may stand in the meter";
    EXPECT_EQ(TextOf(EventsOf("initialized").at(0), "how"), "fault");
}

TEST_F(WiredInit, ThatQuitBrokeOffIsInTheJournal)
{
    ASSERT_NO_FATAL_FAILURE(Opens());
    person->Clicks("cmdInitStartRetry").Waits(100).Clicks("cmdQuit");
    person->Runs();
    EXPECT_EQ(EventsOf("words written").size(), 1U);
    const auto ended = EventsOf("initialized");
    ASSERT_EQ(ended.size(), 1U);
    EXPECT_EQ(TextOf(ended[0], "how"), "quit");
}

TEST_F(WiredInit, EscIsCancel)
{
    ASSERT_NO_FATAL_FAILURE(Opens());
    bench->SwitchFault("silent-meter", true);
    person->Clicks("cmdInitStartRetry").Waits(20'000).Presses(Qt::Key_Escape).WaitsFor("cmdDone(0)");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(Text("lblInitStatus"), "NVM Initialization Failed");
}

}  // namespace ombrix::test
