#include "records/raw_words_page.h"

#include "records/nvm_page_fixture.h"

#include <utility>

using namespace ombrix;
using namespace ombrix::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char *kAddress = "txtNVMWord(0)";
constexpr const char *kValue = "txtNVMWord(1)";
constexpr const char *kRead = "cmdNVMWord(2)";
constexpr const char *kSave = "cmdNVMWord(3)";
constexpr const char *kCancel = "cmdNVMWord(4)";
constexpr const char *kBack = "cmdNVMWord(5)";

class RawWords : public WiredNvm
{
protected:
    void SetUp() override
    {
        Opens(kDc);
        person->Clicks("cmdNVMWord(0)");
        Runs();
    }

    ScriptedOperator &Reads(const std::string &address, int words)
    {
        return person->Types(kAddress, address)
            .Clicks("optNVMLen(" + std::to_string(words - 1) + ")")
            .Clicks(kRead)
            .WaitsFor(kRead);
    }
    void SavesTheWords() { person->Clicks(kSave).WaitsFor(kRead); }
};

}  // namespace

TEST_F(RawWords, BeginAtWordZeroWithOneWordUnread)
{
    EXPECT_TRUE(Sees("fraCalib(18)"));
    EXPECT_EQ(Text(kAddress), "00");
    EXPECT_EQ(Text(kValue), "");
    EXPECT_FALSE(IsEnabled(kValue));
    EXPECT_TRUE(ScriptedOperator::IsOn("optNVMLen(0)"));
    EXPECT_TRUE(IsEnabled(kRead));
    EXPECT_TRUE(IsEnabled(kBack));
    EXPECT_FALSE(IsEnabled(kSave));
    EXPECT_FALSE(IsEnabled(kCancel));
    EXPECT_TRUE(IsEnabled(StepButton(4)));
    EXPECT_TRUE(HasFocus(kAddress));
}

TEST_F(RawWords, AreReadFromTheHighestDownward)
{
    Reads("1f", 3);
    Runs();
    EXPECT_THAT(ToMeter(), ElementsAre("*1X31F"));
    EXPECT_EQ(Text(kValue), HexText(WordOf(31), 4) + HexText(WordOf(30), 4) + HexText(WordOf(29), 4));
    EXPECT_TRUE(HasFocus(kValue));
}

TEST_F(RawWords, ThatWouldRunBelowZeroAreCut)
{
    Reads("02", 4);
    Runs();
    EXPECT_TRUE(ScriptedOperator::IsOn("optNVMLen(2)"));
    EXPECT_EQ(Text(kValue).size(), 12U);
    EXPECT_THAT(ToMeter(), ElementsAre("*1X302"));
}

TEST_F(RawWords, FewerOfThemStayMoreAreUnread)
{
    Reads("1F", 3);
    person->Clicks("optNVMLen(1)").Does([this] {
        EXPECT_EQ(Text(kValue), HexText(WordOf(31), 4) + HexText(WordOf(30), 4));
        EXPECT_TRUE(IsEnabled(kValue));
    });
    person->Clicks("optNVMLen(3)").Does([] {
        EXPECT_EQ(Text(kValue), "");
        EXPECT_FALSE(IsEnabled(kValue));
    });
    Runs();
}

TEST_F(RawWords, AnotherAddressIsUnread)
{
    Reads("1F", 1);
    person->Types(kAddress, "2").Does([] {
        EXPECT_EQ(Text(kValue), "");
        EXPECT_FALSE(IsEnabled(kValue));
        EXPECT_TRUE(HasFocus(kAddress));
    });
    person->Clicks(kRead).WaitsFor(kRead);
    Runs();
    EXPECT_EQ(Text(kValue), HexText(WordOf(2), 4)) << "one digit is a number too";
}

TEST_F(RawWords, AChangeIsCyanAndHoldsTheOperator)
{
    Reads("1F", 2);
    person->Types(kValue, "5").Does([] {
        EXPECT_EQ(FieldFill(kValue), kFieldCyan);
        EXPECT_TRUE(IsEnabled(kSave));
        EXPECT_TRUE(IsEnabled(kCancel));
        EXPECT_FALSE(IsEnabled(kRead));
        EXPECT_FALSE(IsEnabled(kBack));
        EXPECT_FALSE(IsEnabled("optNVMLen(0)"));
        EXPECT_FALSE(IsEnabled("cmdSetup"));
        EXPECT_TRUE(HasFocus(kValue));
        EXPECT_NE(Unsaved(), "");
    });
    SavesTheWords();
    Runs();
    EXPECT_EQ(WordOf(31), 0);
    EXPECT_EQ(WordOf(30), 5) << "zeros stand in front of what was typed";
    EXPECT_THAT(Writes(), ElementsAre("*1W21F00000005"));
    EXPECT_EQ(Text(kValue), "00000005");
    EXPECT_EQ(FieldFill(kValue), "");
    EXPECT_TRUE(IsEnabled("cmdSetup"));
}

TEST_F(RawWords, FourOfThemWithThreeDigitsTypedLandWhereTheyBelong)
{
    Reads("22", 4);
    person->Types(kValue, "ABC");
    SavesTheWords();
    Runs();
    EXPECT_THAT(Writes(), ElementsAre("*1W4220000000000000ABC"));
    EXPECT_EQ(WordOf(31), 0x0ABC);
    EXPECT_EQ(WordOf(34), 0);
}

TEST_F(RawWords, CancelShowsWhatTheMeterHolds)
{
    Reads("1F", 1);
    person->Types(kValue, "5").Clicks(kCancel).WaitsFor(kRead);
    Runs();
    EXPECT_EQ(Text(kValue), HexText(WordOf(31), 4));
    EXPECT_EQ(FieldFill(kValue), "");
    EXPECT_THAT(Writes(), IsEmpty());
}

TEST_F(RawWords, ThatDidNotTakeAreRedWithWhatTheMeterHolds)
{
    bench->WearOut(31);
    const std::string old = HexText(WordOf(31), 4);
    Reads("1F", 1);
    person->Types(kValue, "5");
    SavesTheWords();
    Runs();
    EXPECT_EQ(Text(kValue), old);
    EXPECT_EQ(FieldFill(kValue), kFieldRed);
    EXPECT_EQ(Text("lblNVMWord"), "Not taken by the meter: it holds " + old + ", not 0005");
}

TEST_F(RawWords, OfASilentMeterStayUnread)
{
    bench->SwitchFault("silent-meter", true);
    Reads("1F", 1);
    Runs();
    EXPECT_EQ(Text(kValue), "");
    EXPECT_FALSE(IsEnabled(kValue));
    EXPECT_EQ(Text("lblNVMWord"), "The meter did not answer");
    EXPECT_EQ(Fill("shpNVMWord"), "#ff0000");
}

TEST_F(RawWords, OfAMeterThatFellSilentAtTheWriteStayPending)
{
    Reads("1F", 1);
    person->Types(kValue, "5").Does([this] { bench->SwitchFault("silent-meter", true); });
    person->Clicks(kSave).WaitsFor(kSave).Does([] {
        EXPECT_EQ(Text(kValue), "0005");
        EXPECT_EQ(Fill("shpNVMWord"), "#ff0000");
    });
    person->Clicks(kCancel).WaitsFor(kRead).Does(
        [] { EXPECT_FALSE(IsEnabled(kValue)) << "nobody knows what it holds"; });
    Runs();
}

TEST_F(RawWords, BackReadsTheMetersWordsAfresh)
{
    bench->SetWord(32, 0x4321);
    person->Clicks(kBack).WaitsUntil("the words are shown", [] { return Text("txtNVM(7)") == "4321"; });
    Runs();
    EXPECT_TRUE(Sees("fraCalib(7)"));
}

// ---- opened from another page ----

TEST_F(RawWords, OfAnotherPageHoldTheNavigationAndTellItWhatTheMeterHolds)
{
    std::vector<std::pair<int, std::string>> told;
    int backs = 0;
    bench->WearOut(63);
    const std::string worn = HexText(WordOf(63), 4);
    EnterRawWords({.written = [&](int address, const std::string &hex) { told.emplace_back(address, hex); },
                   .back = [&] { ++backs; }});
    EXPECT_FALSE(IsEnabled(StepButton(4)));
    EXPECT_FALSE(IsEnabled("cmdSetup"));
    Reads("3F", 2);
    person->Types(kValue, "12345678");
    SavesTheWords();
    person->Does([] { EXPECT_FALSE(IsEnabled("cmdSetup")); });
    person->Clicks(kBack);
    Runs();
    EXPECT_THAT(told, ElementsAre(std::pair(63, worn + "5678")));
    EXPECT_EQ(backs, 1);
    EXPECT_TRUE(Sees("fraCalib(18)")) << "the other page shows itself";
}
