#include "calibration/analog_output.h"

#include "model/analog_settings.h"
#include "support/bench_log.h"
#include "testbench/bench_fixture.h"

#include <initializer_list>
#include <set>

namespace ombrix::bench {
namespace {

using testing::ElementsAre;

constexpr const char *kImage = "FA2001E0FD700048FD700048FA2001E0FD700048";
constexpr int kMode = 20;  // the meter's mode word
constexpr int kDac = 240;

class AnalogOnBench : public StationOnBench
{
protected:
    void Meets(int board)
    {
        Stands({.board = board});
        InitAnalogOutput();
        Establishes();
        SessionMeterKind = MeterKind;
        LoadAnalogNominal();
        Forget();
    }
    void TearDown() override
    {
        EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
        StationOnBench::TearDown();
        QFile::remove("Ombrix.ini");
    }
    void Forget() { m_since = clock.NowMicros(); }
    std::vector<std::string> Frames() const { return test::FramesTo(*bench, Line::Meter, m_since); }
    std::vector<std::string> FramesOf(const std::function<void()> &work)
    {
        Forget();
        work();
        return Frames();
    }
    std::int64_t MillisecondsOf(const std::function<void()> &work)
    {
        const std::int64_t start = clock.NowMicros();
        work();
        return (clock.NowMicros() - start) / 1000;
    }
    void StoresImage(const std::string &image)
    {
        StoreAnalogWordsHex(image);
        LoadAnalogNominal();
    }
    std::uint16_t Word(int word) const { return bench->Nvm()[static_cast<std::size_t>(word)]; }

private:
    std::int64_t m_since = 0;
};

class CounterOnBench : public AnalogOnBench
{
};

}  // namespace

// ---- what is written ----

TEST_F(AnalogOnBench, PutsOutAPointThroughAWorkingByte)
{
    Meets(board::kDc);
    const char *const kFrames[] = {"*1F68F000000600000", "*1F68F004E20600000", "*1F68F0000C8600000",
                                   "*1F68F004E20600000", "*1F68F000000600000", "*1F68F004E20600000"};
    for (int point = 0; point < 6; ++point)
        EXPECT_THAT(FramesOf([point] { OutputAnalogPoint(point, ""); }), ElementsAre(kFrames[point])) << point;
    CurrentOffsetPoint = "4000";
    EXPECT_THAT(FramesOf([] { OutputAnalogPoint(2, ""); }), ElementsAre("*1F68F000FA0600000"));
}

TEST_F(CounterOnBench, PutsOutAPointThroughAWord)
{
    Meets(board::kVf);
    const char *const kFrames[] = {"*1W311000000000000", "*1W3110186A0000000", "*1W3110003E8000000",
                                   "*1W3110186A0000000", "*1W311000000000000", "*1W3110186A0000000"};
    for (int point = 0; point < 6; ++point)
        EXPECT_THAT(FramesOf([point] { OutputAnalogPoint(point, "Z"); }), ElementsAre(kFrames[point])) << point;
    CurrentOffsetPoint = "4000";
    EXPECT_THAT(FramesOf([] { OutputAnalogPoint(2, ""); }), ElementsAre("*1W311004E20000000"));
}

TEST_F(AnalogOnBench, PreparesTheMeterForItsDac)
{
    Meets(board::kDc);
    const char *const kDacs[] = {"0000", "525C", "535C", "545C"};
    for (analog.dacType = 0; analog.dacType < 4; ++analog.dacType)
        EXPECT_THAT(FramesOf([] { PrepareAnalogTest(""); }),
                    ElementsAre("*1W30E004E20000000Z", std::string("*1W1F0") + kDacs[analog.dacType]));
}

TEST_F(AnalogOnBench, SetsAModeWithARestart)
{
    Meets(board::kDc);
    EXPECT_THAT(FramesOf([] { SetAnalogMode(kVoltageOutput); }), ElementsAre("*1W1140201"));
    EXPECT_THAT(FramesOf([] { SetAnalogMode(kCurrentOutput); }), ElementsAre("*1W1140001"));
    EXPECT_THAT(FramesOf([] { SetAnalogMode(kBipolarOutput); }), ElementsAre("*1W1140601"));
}

TEST_F(CounterOnBench, HasModesOfItsOwn)
{
    Meets(board::kVf);
    EXPECT_THAT(FramesOf([] { SetAnalogMode(kVoltageOutput); }), ElementsAre("*1W1245555"));
    EXPECT_THAT(FramesOf([] { SetAnalogMode(kCurrentOutput); }), ElementsAre("*1W1245511"));
    EXPECT_THAT(FramesOf([] { SetAnalogMode(kBipolarOutput); }), ElementsAre("*1W124550D"));
}

TEST_F(AnalogOnBench, GetsSevenTenthsOfASecondMoreAfterARestart)
{
    Meets(board::kDc);
    EXPECT_EQ(MillisecondsOf([] { WriteAnalogNvm(60, "0048", ""); }), 1750 + 700);
    EXPECT_EQ(MillisecondsOf([] { WriteAnalogNvm(60, "0048", "Z"); }), 8);
    EXPECT_GE(MillisecondsOf([] { EXPECT_EQ(ReadAnalogNvm(60, 1, ""), "0048"); }), 1750 + 700 + 500);
    EXPECT_LT(MillisecondsOf([] { EXPECT_EQ(ReadAnalogNvm(60, 1, "Z"), "0048"); }), 600);
}

TEST_F(CounterOnBench, IsNeverWrittenOrReadWithZ)
{
    Meets(board::kVf);
    EXPECT_THAT(FramesOf([] { WriteAnalogNvm(188, "0048", "Z"); }), ElementsAre("*1W1BC0048"));
    EXPECT_THAT(FramesOf([] { EXPECT_EQ(ReadAnalogNvm(188, 1, "Z"), "0048"); }), ElementsAre("*1X1BC"));
    EXPECT_LT(MillisecondsOf([] { WriteAnalogNvm(188, "0048", ""); }), 2100) << "its sign of life ends the wait";
}

TEST_F(AnalogOnBench, RestoresTheNominalWordsOfAllThatIsDone)
{
    Meets(board::kDc);
    StoresImage(kImage);
    analog.bipolarDone = analog.dualDone = true;
    analog.words.fill(0);
    EXPECT_THAT(FramesOf(RestoreAnalogWords), ElementsAre("*1W30E004E20000000Z", "*1W1F0525C", "*1W2F2FD700048Z",
                                                          "*1W4F6FA2001E0FD700048Z", "*1W43FFA2001E0FD700048"));
    EXPECT_EQ(analog.words, analog.nominal);
    EXPECT_EQ(CheckAnalogWords(), WordsHeld::Yes);
}

TEST_F(CounterOnBench, RestoresTheNominalWordsInItsOwnPlaces)
{
    Meets(board::kVf);
    StoresImage(kImage);
    analog.bipolarDone = analog.dualDone = true;
    analog.words.fill(0);
    EXPECT_THAT(FramesOf(RestoreAnalogWords), ElementsAre("*1W31A0186A0000000", "*1W190525C", "*1W292FD700048",
                                                          "*1W496FA2001E0FD700048", "*1W4BFFA2001E0FD700048"));
    EXPECT_EQ(CheckAnalogWords(), WordsHeld::Yes);
}

TEST_F(AnalogOnBench, RestoresNothingOfAGroupThatIsNotDone)
{
    Meets(board::kDc);
    analog.words.fill(7);
    EXPECT_THAT(FramesOf(RestoreAnalogWords),
                ElementsAre("*1W30E004E20000000Z", "*1W1F0525C", "*1W43F" + analog.image.substr(0, 16)));
    EXPECT_EQ(analog.words[3], analog.nominal[3]);
    EXPECT_EQ(analog.words[4], 7);
    EXPECT_EQ(analog.words[9], 7);
}

TEST_F(AnalogOnBench, RestoresWhatItsDacHasAndTellsWhatBecameOfIt)
{
    Meets(board::kDc);
    StoresImage(kImage);
    analog.dacType = kDacBipolar;
    analog.words.fill(7);
    const AnalogRestored all = RestoreAndCheckAnalogWords(true);
    EXPECT_EQ(all.held, WordsHeld::Yes);
    ASSERT_EQ(all.runs.size(), 2U);
    EXPECT_EQ(all.runs[0].word, 242);
    EXPECT_EQ(all.runs[0].text, "FD700048");
    EXPECT_EQ(all.runs[1].word, 63);
    EXPECT_EQ(all.before[0], 7);
    EXPECT_FALSE(analog.bipolarDone) << "nothing was calibrated";
    EXPECT_EQ(RestoreAndCheckAnalogWords(false).runs.size(), 1U);
}

TEST_F(AnalogOnBench, RestoresNothingMoreBehindAStop)
{
    Meets(board::kDc);
    analog.words.fill(7);
    const ScopedFlag stopped(Abort);
    AnalogRestored restored;
    EXPECT_THAT(FramesOf([&] { restored = RestoreAndCheckAnalogWords(true); }),
                ElementsAre("*1W30E004E20000000Z", "*1W1F0525C"));
    EXPECT_TRUE(restored.runs.empty());
    EXPECT_EQ(restored.held, WordsHeld::Silent);
    EXPECT_EQ(analog.words[3], 7);
}

// ---- what is read ----

TEST_F(AnalogOnBench, ReadsTheTenWordsOutOfTheMeter)
{
    Meets(board::kDc);
    for (int point = 0; point < kAnalogWords; ++point)
        bench->SetWord(AnalogWordAddress(point, false), static_cast<std::uint16_t>(0x100 + point));
    ASSERT_TRUE(ReadAnalogWords());
    for (std::size_t point = 0; point < kAnalogWords; ++point)
        EXPECT_EQ(analog.words[point], 0x100 + point);
    EXPECT_EQ(CheckAnalogWords(), WordsHeld::Yes);
    bench->SetWord(61, 0x5555);
    EXPECT_EQ(CheckAnalogWords(), WordsHeld::No);
    EXPECT_EQ(analog.words[1], 0x5555) << "what the meter holds is what counts";
    bench->SwitchFault("silent-meter", true);
    EXPECT_EQ(CheckAnalogWords(), WordsHeld::Silent);
    EXPECT_FALSE(ReadAnalogWords());
    EXPECT_EQ(analog.words[1], 0x5555);
}

TEST_F(AnalogOnBench, ReadsTheWordOfOnePointBack)
{
    Meets(board::kDc);
    ASSERT_TRUE(ReadAnalogWords());
    EXPECT_THAT(FramesOf([] { EXPECT_EQ(CheckAnalogWord(1), WordsHeld::Yes); }), ElementsAre("*1X13DZ"));
    bench->SetWord(61, 0x5555);
    bench->SetWord(60, 0x6666);
    EXPECT_EQ(CheckAnalogWord(1), WordsHeld::No);
    EXPECT_EQ(analog.words[1], 0x5555);
    EXPECT_NE(analog.words[0], 0x6666) << "nobody has asked for it";
    EXPECT_EQ(CheckAnalogWord(1), WordsHeld::Yes);
    bench->SwitchFault("silent-meter", true);
    EXPECT_EQ(CheckAnalogWord(1), WordsHeld::Silent);
    EXPECT_EQ(analog.words[1], 0x5555);
}

// ---- what is kept ----

TEST_F(AnalogOnBench, LearnsATenthOfEachGroupThatIsDone)
{
    Meets(board::kDc);
    StoresImage(kImage);
    analog.words = {94, 64799, 485, 65535, 94, 64799, 94, 64799, 485, 65535};
    BlendAnalogNominal();
    EXPECT_EQ(analog.image, "FAB601E0FD68004AFD700048FA2001E0FD700048") << "480 goes to 480.5, which is 480";
    analog.bipolarDone = true;
    BlendAnalogNominal();
    EXPECT_EQ(analog.image.substr(16, 8), "FD68004A");
    EXPECT_EQ(analog.image.substr(24), "FA2001E0FD700048");
    EXPECT_EQ(StoredAnalogImage(), analog.image);
}

TEST_F(AnalogOnBench, ZeroesTheImageToTheFactorys)
{
    Meets(board::kDc);
    DacTypeText = "3";
    ResetAnalogNominal();
    EXPECT_EQ(StoredAnalogImage(), kImage);
    EXPECT_EQ(DacTypeText, "1");
    LoadAnalogNominal();
    const std::array<std::uint16_t, kAnalogWords> words = {0x48,   0xFD70, 0x1E0,  0xFA20, 0x48,
                                                           0xFD70, 0x48,   0xFD70, 0x1E0,  0xFA20};
    EXPECT_EQ(analog.nominal, words);
    EXPECT_EQ(analog.dacType, kDacXmtr);
}

// ---- what is borrowed ----

namespace {

// The words of the customer's, told apart.
void GiveCustomersWords(Bench &bench, std::initializer_list<int> words)
{
    for (const int word : words)
        bench.SetWord(word, static_cast<std::uint16_t>(0x0A00 + word));
}

}  // namespace

TEST_F(AnalogOnBench, FindsTheMeterAsItWasAfterwards)
{
    Meets(board::kDc);
    GiveCustomersWords(*bench, {14, 13, 12, 20, 240});
    const Words before = bench->Nvm();
    ASSERT_TRUE(BorrowAnalogSettings());
    PrepareAnalogTest("");
    SetAnalogMode(kBipolarOutput);
    OutputAnalogPoint(1, "");
    EXPECT_NE(bench->Nvm(), before);
    const int restarts = bench->Restarts();
    Forget();
    EXPECT_EQ(GiveBackAnalogSettings(), GivenBack::Yes);
    EXPECT_EQ(bench->Nvm(), before);
    EXPECT_EQ(bench->Restarts(), restarts + 1);
    EXPECT_THAT(Frames(), testing::Contains("*1F68F000000600000"));
    EXPECT_FALSE(AnalogSettingsBorrowed());
    EXPECT_THAT(FramesOf([] { EXPECT_EQ(GiveBackAnalogSettings(), GivenBack::Yes); }), testing::IsEmpty());
}

TEST_F(CounterOnBench, IsFoundAsItWasAfterwards)
{
    Meets(board::kVf);
    GiveCustomersWords(*bench, {26, 25, 24, 36, 144, 17, 16, 15});
    const Words before = bench->Nvm();
    ASSERT_TRUE(BorrowAnalogSettings());
    PrepareAnalogTest("");
    SetAnalogMode(kVoltageOutput);
    OutputAnalogPoint(1, "");
    EXPECT_EQ(GiveBackAnalogSettings(), GivenBack::Yes);
    EXPECT_EQ(bench->Nvm(), before);
}

TEST_F(CounterOnBench, NamesItsOwnWordsAlsoWhenAnotherKindHasTakenItsPlace)
{
    Meets(board::kVf);
    GiveCustomersWords(*bench, {36, 144});
    ASSERT_TRUE(BorrowAnalogSettings());
    EXPECT_THAT(AnalogSettingsFound(), testing::Contains("0A24"));
    SessionMeterKind = kDpm;
    EXPECT_EQ(AnalogSettingsNames(), "26 to 24, 36, 17 to 15, 144");
    EXPECT_EQ(GiveBackAnalogSettings(), GivenBack::OtherMeter);
    EXPECT_EQ(AnalogSettingsNames(), "14 to 12, 20, 240");
    EXPECT_THAT(AnalogSettingsFound(), testing::IsEmpty());
}

TEST_F(AnalogOnBench, IsNoSilentMeterWhenTheGivingBackWasStopped)
{
    Meets(board::kDc);
    ASSERT_TRUE(BorrowAnalogSettings());
    {
        const ScopedFlag stopped(Abort);
        EXPECT_EQ(GiveBackAnalogSettings(), GivenBack::Stopped);
    }
    EXPECT_TRUE(AnalogSettingsBorrowed());
    EXPECT_EQ(GiveBackAnalogSettings(), GivenBack::Yes);
}

TEST_F(AnalogOnBench, KeepsWhatTheMeterDidNotTakeBackForAnotherTry)
{
    Meets(board::kDc);
    GiveCustomersWords(*bench, {14, 13, 12, kMode, kDac});
    ASSERT_TRUE(BorrowAnalogSettings());
    const std::vector<std::string> found = AnalogSettingsFound();
    SetAnalogMode(kBipolarOutput);
    EXPECT_TRUE(BorrowAnalogSettings()) << "the meter's own words are the ones that were found first";
    bench->WearOut(kMode);
    EXPECT_EQ(GiveBackAnalogSettings(), GivenBack::NotTaken);
    EXPECT_TRUE(AnalogSettingsBorrowed());
    EXPECT_EQ(AnalogSettingsFound(), found);
    EXPECT_THAT(WhyNotGivenBack(GivenBack::NotTaken, AnalogSettingsNames()),
                testing::HasSubstr("14 to 12, 20, 240 don't read back as they were before"));
}

TEST_F(AnalogOnBench, WritesNothingIntoAMeterThatWasPutInItsPlace)
{
    Meets(board::kDc);
    ASSERT_TRUE(BorrowAnalogSettings());
    PrepareAnalogTest("");
    bench->SetWord(kMode, 0x0777);  // another meter has another mode
    bench->SetWord(14, 0x1234);
    const Words other = bench->Nvm();
    EXPECT_EQ(GiveBackAnalogSettings(), GivenBack::OtherMeter);
    EXPECT_EQ(bench->Nvm(), other);
    EXPECT_FALSE(AnalogSettingsBorrowed());
}

TEST_F(AnalogOnBench, KnowsItsMeterAlsoWhenAWriteGotLost)
{
    Meets(board::kDc);
    const Words before = bench->Nvm();
    ASSERT_TRUE(BorrowAnalogSettings());
    PrepareAnalogTest("");
    SetAnalogMode(kVoltageOutput);
    bench->SwitchFault("silent-meter", true);
    SetAnalogMode(kCurrentOutput);
    bench->SwitchFault("silent-meter", false);
    bench->SetWord(kMode, 0x0201);  // as if the second mode had never come
    bench->SetWord(kDac, before[kDac]);
    EXPECT_EQ(GiveBackAnalogSettings(), GivenBack::Yes);
    EXPECT_EQ(bench->Nvm(), before);
}

TEST_F(AnalogOnBench, KeepsTheWordsOfASilentMeterForAnotherTry)
{
    Meets(board::kDc);
    GiveCustomersWords(*bench, {14, 13, 12, 20, 240});
    const Words before = bench->Nvm();
    ASSERT_TRUE(BorrowAnalogSettings());
    PrepareAnalogTest("");
    bench->SwitchFault("silent-meter", true);
    EXPECT_EQ(GiveBackAnalogSettings(), GivenBack::Silent);
    EXPECT_TRUE(AnalogSettingsBorrowed());
    bench->SwitchFault("silent-meter", false);
    EXPECT_EQ(GiveBackAnalogSettings(), GivenBack::Yes);
    EXPECT_EQ(bench->Nvm(), before);
}

TEST_F(AnalogOnBench, BorrowsNothingFromASilentMeter)
{
    Meets(board::kDc);
    bench->SwitchFault("silent-meter", true);
    EXPECT_FALSE(BorrowAnalogSettings());
    EXPECT_FALSE(AnalogSettingsBorrowed());
    EXPECT_THAT(FramesOf(ZeroAnalogOutput), testing::IsEmpty());
}

TEST_F(AnalogOnBench, LeavesWhatTheOperatorHasWrittenByHand)
{
    Meets(board::kDc);
    ASSERT_TRUE(BorrowAnalogSettings());
    PrepareAnalogTest("");
    WriteNvmWords(20, "0503", "");
    TakeOverAnalogWords(20, "0503");
    WriteNvmWords(63, "11112222", "");
    TakeOverAnalogWords(63, "11112222");
    EXPECT_EQ(analog.words[3], 0x1111);
    EXPECT_EQ(analog.words[2], 0x2222);
    EXPECT_EQ(GiveBackAnalogSettings(), GivenBack::Yes);
    EXPECT_EQ(Word(kMode), 0x0503);
    EXPECT_EQ(Word(63), 0x1111);
}

TEST_F(AnalogOnBench, IsZeroedWithoutAWait)
{
    Meets(board::kDc);
    ASSERT_TRUE(BorrowAnalogSettings());
    EXPECT_LT(MillisecondsOf(
                  [this] { EXPECT_THAT(FramesOf(ZeroAnalogOutput), testing::IsSubsetOf({"*1F68F000000600000"})); }),
              50);
}

TEST_F(CounterOnBench, IsZeroedWithoutAWait)
{
    Meets(board::kVf);
    ASSERT_TRUE(BorrowAnalogSettings());
    PrepareAnalogTest("");
    OutputAnalogPoint(1, "");
    EXPECT_EQ(MillisecondsOf(ZeroAnalogOutput), 0);
    DelayMs(2500);
    EXPECT_EQ(Word(17), 0);
}

}  // namespace ombrix::bench
