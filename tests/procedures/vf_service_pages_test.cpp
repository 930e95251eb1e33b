#include "support/page_test.h"

#include "model/kept_config.h"
#include "platform/safe_file.h"
#include "platform/text.h"
#include "session/journal.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "testbench/boards.h"

#include <QDir>

namespace ombrix::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr int kNominalize = 1;  // positions
constexpr int kGetConfig = 14;
constexpr int kRestConfig = 16;

std::string Result(int row, int column)
{
    return ScriptedOperator::Cell("msgVFNom", row, column);
}

// ---- Nominalize ----

class SimulatedCounter : public SimulatedPage
{
protected:
    void SetUp() override
    {
        SimulatedPage::SetUp();
        SimNvm[109] = 0x3203;
    }
};

TEST_F(SimulatedCounter, GainsOutsideTheirBoundsGiveWayToTheNominalOnes)
{
    Establishes();
    person->Clicks(StepButton(kNominalize)).WaitsFor("cmdDone(3)");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("lblAA(10)"), "Gain must be between 0.5 and 2.0");
    struct {
        const char *range, *gain, *result;
    } constexpr kRows[] = {{"VF 4-20 mA", "2.26", "Nominal Gain and Offset written"},
                           {"VF 0-1 mA", "1.", "Gain and Offset Retained"},
                           {"VF 0-10 V", "2.01", "Nominal Gain and Offset written"}};
    for (int row = 0; row < 3; ++row) {
        EXPECT_EQ(Result(row, 0), kRows[row].range);
        EXPECT_EQ(Result(row, 1), kRows[row].gain);
        EXPECT_EQ(Result(row, 2), kRows[row].result);
    }
    std::string words;
    for (std::size_t word = 201; word >= 193; --word)
        words += HexText(SimNvm[word], 4);
    EXPECT_EQ(words, "FF77451428F6FFD9B8100000FFD9B8100000");
    EXPECT_TRUE(HasFocus("cmdDone(3)"));
    person->Clicks("cmdDone(3)").WaitsUntil("the next step", StandsAt(kNominalize + 1)).WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
}

class WiredCounter : public WiredPage
{
protected:
    std::vector<WordBoxes> boxes;  // that were shown, one after the other
    std::vector<JournalEvent> events;
    int listener = -1;

    void TearDown() override
    {
        if (listener >= 0)
            StopListening(listener);
        WiredPage::TearDown();
    }
    void Stand()
    {
        Stands({.board = bench::board::kVf, .kind = 3});
        Establishes();
        frameHooks.showWordBoxes = [this](const WordBoxes &shown) { boxes.push_back(shown); };
        listener = ListenToJournal([this](const JournalEvent &event) { events.push_back(event); });
    }
    void Opens(int position) { person->Clicks(StepButton(position)).WaitsFor("cmdSetup"); }
    /// "Save" on the boxes shown last.
    void Saves()
    {
        person->Does([this] {
            RunPageProcedure(
                [this] {
                    WordBoxes after = boxes.back().save();
                    boxes.push_back(after);
                },
                [](Ended) {});
        });
    }
    void Runs() { ASSERT_TRUE(person->Runs()) << person->Trouble(); }
    std::string Image() const
    {
        std::string image;
        for (std::size_t word = 49; word < 50; --word)
            image += HexText(WordOf(word), 4);
        return image;
    }
    std::vector<std::string> Writes() const
    {
        std::vector<std::string> writes = ToMeter();
        std::erase_if(writes, [](const std::string &frame) { return frame[2] != 'W'; });
        return writes;
    }
};

TEST_F(WiredCounter, NominalizeWritesNothingOfWhatItCouldNotReadInFull)
{
    Stand();
    bench->AnswerNext(bench::Line::Meter, "FFD9B8200000FFD9B8200001\r", "1X9C9");
    person->Does([this] { Forget(); });
    Opens(kNominalize);
    Runs();
    EXPECT_THAT(Writes(), IsEmpty());
    EXPECT_EQ(Result(0, 2), "");
    EXPECT_EQ(Text("lblVFNom"),
              "The meter did not answer, nothing was written:\ncheck its line, then click the step again");
    EXPECT_EQ(Fill("shpVFNom"), "#ff0000");
    EXPECT_TRUE(IsEnabled("cmdDone(3)"));
}

TEST_F(WiredCounter, NominalizeTellsTheJournalEachGainThatItFound)
{
    Stand();
    const std::string before = HexText(WordOf(201), 4) + HexText(WordOf(200), 4) + HexText(WordOf(199), 4);
    Opens(kNominalize);
    Runs();
    std::vector<std::string> found;
    for (const JournalEvent &event : events)
        if (event.kind == "gain checked")
            found.push_back(TextOf(event, "found"));
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[2], before);
    ASSERT_GE(events.size(), 2u);
    EXPECT_EQ(TextOf(events[events.size() - 2], "to"), "FF77451428F6");
    EXPECT_TRUE(std::get<bool>(FieldOf(events.back(), "taken")->is));
}

TEST_F(WiredCounter, NominalizeReadsBackWhatItWroteAndTellsWhatTheMeterDidNotTake)
{
    Stand();
    bench->WearOut(200);  // holds half of the gain of 0-10 V
    person->Does([this] { Forget(); });
    Opens(kNominalize);
    Runs();
    EXPECT_THAT(ToMeter(), ElementsAre("*1X9C9", "*1W3C3FFD9B8100000", "*1W3C9FF77451428F6", "*1X9C9Z"));
    EXPECT_EQ(Result(0, 2), "Nominal Gain and Offset written");
    EXPECT_EQ(Result(1, 2), "Gain and Offset Retained");
    EXPECT_EQ(Result(2, 2), "Not taken by the meter");
    EXPECT_EQ(Text("lblVFNom"), "Nominal Gain and Offset were not found in the meter:\n"
                                "check its line, then click the step again");
    EXPECT_EQ(Fill("shpVFNom"), "#ff0000");
    EXPECT_FALSE(std::get<bool>(FieldOf(events.back(), "taken")->is));
}

TEST_F(WiredCounter, NominalizeClaimsNothingThatALineThatWentCannotHaveCarried)
{
    Stand();
    bench->FaultAtExchange("meter-port-gone", bench->Exchanges() + 1, true);  // behind the reading
    Opens(kNominalize);
    Runs();
    EXPECT_EQ(Result(0, 2), "Written, not confirmed");
    EXPECT_EQ(Result(1, 2), "Gain and Offset Retained");
    EXPECT_EQ(Fill("shpVFNom"), "#ff0000");
}

// ---- the configuration ----

TEST_F(WiredCounter, RestConfigWaitsForAConfigurationAndPutsItBack)
{
    Stand();
    EXPECT_FALSE(IsEnabled(StepButton(kRestConfig)));
    const std::string image = Image();
    person->Does([this] { Forget(); });
    Opens(kGetConfig);
    Runs();
    EXPECT_THAT(ToMeter(), ElementsAre("*1XP31Z", "*1XP18"));
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].image, "") << "blank while it is read";
    EXPECT_EQ(boxes[1].image, image);
    EXPECT_EQ(boxes[1].says, "The original onfiguration above has been saved.");
    EXPECT_FALSE(boxes[1].save);
    EXPECT_EQ(RestConfigImage, image);
    EXPECT_TRUE(IsEnabled(StepButton(kRestConfig)));

    for (int word = 0; word < 50; ++word)
        bench->SetWord(word, static_cast<std::uint16_t>(0x1111 + word));
    Opens(kRestConfig);
    Runs();
    EXPECT_EQ(boxes.back().image, image);
    EXPECT_EQ(boxes.back().says, "Click \"Save\" to restore the original onfiguration above.");
    person->Does([this] { Forget(); });
    Saves();
    Runs();
    EXPECT_EQ(Image(), image);
    EXPECT_EQ(Writes(),
              (std::vector<std::string>{"*1WP31" + image.substr(0, 100) + "Z", "*1WP18" + image.substr(100)}));
    EXPECT_EQ(boxes.back().says, "Configuration restored.");
    EXPECT_FALSE(boxes.back().trouble);
    EXPECT_FALSE(boxes.back().save);
    EXPECT_EQ(StateOfFile("KeptConfig.txt"), FileState::Missing);
    EXPECT_EQ(TextOf(events.back(), "verdict"), "taken");
}

TEST_F(WiredCounter, AConfigurationThatWasNotReadInFullIsNotKept)
{
    Stand();
    bench->AnswerNext(bench::Line::Meter, "FFFF\r", "1XP18");
    Opens(kGetConfig);
    Runs();
    EXPECT_EQ(RestConfigImage, "");
    EXPECT_FALSE(IsEnabled(StepButton(kRestConfig)));
    EXPECT_TRUE(boxes.back().trouble);
    EXPECT_EQ(StateOfFile("KeptConfig.txt"), FileState::Missing);
}

TEST_F(WiredCounter, AWordThatTheMeterDidNotTakeIsNamed)
{
    Stand();
    Opens(kGetConfig);
    Opens(kRestConfig);
    Runs();
    std::string high = Image().substr(0, 100);
    high.replace(24, 4, "DEAD");  // word 43
    bench->AnswerNext(bench::Line::Meter, high + "\r", "1XP31Z");
    Saves();
    Runs();
    EXPECT_THAT(boxes.back().says, HasSubstr("words 2B."));
    EXPECT_TRUE(boxes.back().trouble);
    EXPECT_EQ(boxes.back().meant, RestConfigImage);
    EXPECT_EQ(boxes.back().image.substr(24, 4), "DEAD");
    EXPECT_EQ(StateOfFile("KeptConfig.txt"), FileState::Readable) << "not restored yet";
    Saves();
    Runs();
    EXPECT_EQ(boxes.back().says, "Configuration restored.");
}

TEST_F(WiredCounter, ATotalThatHasGoneOnSinceIsNoReasonToRestoreAgain)
{
    Stand();
    Opens(kGetConfig);
    Opens(kRestConfig);
    Runs();
    std::string high = Image().substr(0, 100);
    high.replace(20, 4, "0077");  // word 44
    bench->AnswerNext(bench::Line::Meter, high + "\r", "1XP31Z");
    Saves();
    Runs();
    EXPECT_EQ(boxes.back().says, "Configuration restored.\r\nTotals have gone on since: words 2C");
    EXPECT_FALSE(boxes.back().trouble);
    EXPECT_EQ(boxes.back().image.substr(20, 4), "0077") << "what the meter holds";
    EXPECT_EQ(StateOfFile("KeptConfig.txt"), FileState::Missing);
}

TEST_F(WiredCounter, AStopBetweenTheTwoWritesIsToldAndAllIsWrittenAgain)
{
    Stand();
    Opens(kGetConfig);
    Runs();
    const std::string image = Image();
    for (int word = 0; word < 40; ++word)
        bench->SetWord(word, 0x1111);
    Opens(kRestConfig);
    person->Does([this] {
        Forget();
        person->Waits(50).Presses(Qt::Key_Escape);
    });
    Saves();
    Runs();
    EXPECT_EQ(Writes().size(), 1u) << "no second write behind the stop";
    EXPECT_EQ(boxes.back().says, "Stopped: the meter may hold half of it. Click \"Save\" to write all of it again.");
    EXPECT_TRUE(boxes.back().trouble);
    EXPECT_EQ(StateOfFile("KeptConfig.txt"), FileState::Readable);
    EXPECT_EQ(TextOf(events.back(), "verdict"), "stopped");
    Saves();
    Runs();
    EXPECT_EQ(boxes.back().says, "Configuration restored.");
    EXPECT_EQ(Image(), image);
}

TEST_F(WiredCounter, AStopIsNotTakenForASilentMeter)
{
    Stand();
    person->Clicks(StepButton(kGetConfig)).Waits(100).Presses(Qt::Key_Escape).WaitsFor("cmdSetup");
    Runs();
    EXPECT_EQ(boxes.back().says, "Stopped before the meter had answered: click the step again");
    EXPECT_EQ(RestConfigImage, "");
}

TEST_F(WiredCounter, AConfigurationThatCouldNotBeFiledSaysSoWhereItIsShown)
{
    Stand();
    QDir().mkdir("KeptConfig.txt");
    Opens(kGetConfig);
    Runs();
    EXPECT_THAT(boxes.back().says, StartsWith("The original onfiguration above has been saved.\r\nOnly until the "
                                              "program ends, no file could be written: "));
    EXPECT_TRUE(boxes.back().trouble);
    EXPECT_TRUE(IsEnabled(StepButton(kRestConfig)));
}

TEST_F(WiredCounter, AnEarlierConfigurationThatCannotBeSetAsideIsNotWrittenOver)
{
    Stand();
    Opens(kGetConfig);
    Runs();
    const std::string first = ReadFile("KeptConfig.txt").value_or("");
    QDir().mkdir("KeptConfig.txt.old");
    bench->SetWord(20, 0x1234);
    Opens(kGetConfig);
    Runs();
    EXPECT_EQ(ReadFile("KeptConfig.txt").value_or(""), first);
    EXPECT_TRUE(boxes.back().trouble);
    EXPECT_EQ(RestConfigImage.substr((49 - 20) * 4, 4), "1234");
}

TEST_F(WiredCounter, WordsKeptBeforeAnotherIdentificationSayWhoseTheyAre)
{
    Stand();
    Opens(kGetConfig);
    Opens(kRestConfig);
    Runs();
    EXPECT_EQ(boxes.back().says, "Click \"Save\" to restore the original onfiguration above.");
    person->ClicksTab(kTabVf).WaitsFor("cmdSetup");  // this may be another meter
    Opens(kRestConfig);
    Runs();
    EXPECT_THAT(boxes.back().says,
                HasSubstr("above.\r\nKept before the meter was identified last, of CTR, revision X2, "
                          "at 20"));
}

TEST_F(WiredCounter, ASilentMeterKeepsTheConfigurationInTheFile)
{
    Stand();
    Opens(kGetConfig);
    Opens(kRestConfig);
    person->Does([this] { bench->SwitchFault("silent-meter", true); });
    Saves();
    Runs();
    EXPECT_TRUE(boxes.back().trouble);
    EXPECT_TRUE(boxes.back().save) << "once more";
    EXPECT_EQ(StateOfFile("KeptConfig.txt"), FileState::Readable);
    EXPECT_EQ(TextOf(events.back(), "verdict"), "no answer");
}

TEST_F(WiredCounter, AKeptConfigurationOutlivesTheProgram)
{
    Stand();
    Opens(kGetConfig);
    Runs();
    const std::string image = RestConfigImage;
    const std::string file = ReadFile("KeptConfig.txt").value_or("");
    EXPECT_EQ(file.substr(0, 201), image + "\n");
    RestConfigImage.clear();
    LoadKeptConfig();
    EXPECT_EQ(RestConfigImage, image);
    EXPECT_EQ(OriginOfKeptConfig().meter, "CTR, revision X2");
    Opens(kRestConfig);
    Runs();
    EXPECT_THAT(boxes.back().says, HasSubstr("\r\nKept by an earlier run, of CTR, revision X2, at 20"));
    EXPECT_THAT(boxes.back().says, HasSubstr(" UTC"));
    for (const std::string &broken : {file.substr(0, 150), file.substr(0, 204), "X" + file, std::string()}) {
        WriteFile("KeptConfig.txt", broken);
        RestConfigImage.clear();
        LoadKeptConfig();
        EXPECT_EQ(RestConfigImage, "") << "what is not whole is none";
    }
}

TEST_F(WiredCounter, AnEarlierConfigurationThatWasNeverRestoredIsSetAside)
{
    Stand();
    Opens(kGetConfig);
    Runs();
    const std::string first = ReadFile("KeptConfig.txt").value_or("");
    bench->SetWord(48, 0x1234);
    Opens(kGetConfig);
    Runs();
    EXPECT_EQ(ReadFile("KeptConfig.txt.old").value_or(""), first);
    EXPECT_THAT(boxes.back().says,
                StartsWith("The original onfiguration above has been saved.\r\nThe one before was never "
                           "restored and is set aside: of CTR, revision X2, at 20"));
    Opens(kGetConfig);
    Runs();
    EXPECT_EQ(ReadFile("KeptConfig.txt.old").value_or(""), first) << "the same words again set nothing aside";
    EXPECT_NE(ReadFile("KeptConfig.txt").value_or(""), first);
}

TEST_F(SimulatedCounter, ASimulatedConfigurationLeavesTheFileAlone)
{
    WriteFile("KeptConfig.txt", "of a real meter");
    Establishes();
    person->Clicks(StepButton(kGetConfig)).WaitsFor(StepButton(kRestConfig));
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(RestConfigImage.size(), kConfigDigits);
    EXPECT_EQ(ReadFile("KeptConfig.txt").value_or(""), "of a real meter");
}

}  // namespace
}  // namespace ombrix::test
