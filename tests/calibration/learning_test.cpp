#include "calibration/step_fixture.h"

#include "model/nominals.h"
#include "platform/text.h"

namespace ombrix::test {
namespace {

class Learning : public OnSimulator
{
protected:
    void SetUp() override
    {
        OnSimulator::SetUp();
        Opens(kDc, 4);
    }
};

struct SlopeRow {
    float nominal, firstWord, firstReading;
    const char *word;
    bool offset;
    const char *plus, *minus;  // as the accepted row shows them
    float learned;             // the nominal slope itself: nothing is learned
    const char *stored;
};

constexpr SlopeRow kSlopes[] = {
    {9.737f, 0, -13, "006E", true, "1", "", 9.549014f, "9.5490"},
    {9.737f, 0, -13, "006E", true, "-1", "", 9.549014f, "9.5490"},
    {9.737f, 0, 13, "FF81", true, "-2", "", 9.917846f, "9.9178"},
    {3.35f, 35144, 79960, "8A0A", false, "+80003", "-79995", 3.512436f, "3.5124"},
    {3.153f, 30248, 80040, "7628", false, "+80003", "-79995", 3.153f, ""},
    {3.0945f, 32768, 79997, "8009", false, "+80001", "-79999", 3.08505f, "3.0851"},
    {3.0945f, 32768, 79997, "8009", false, "+79998", "-79996", 3.0945f, ""},
    {31.4f, 256, 4010, "FFC6", true, "4001", "", 31.74889f, "31.7489"},
    {9.737f, 0, -13, "006E", true, "-13", "", 9.186377f, "9.1864"},
    {9.737f, 0, 13, "006E", true, "-13", "", 9.737f, ""},
    {2.0f, 100, 50, "00C8", false, "+100", "-100", 2.0f, ""},  // just what was known
};

TEST_F(Learning, MovesTheNominalSlopeATenthOfTheWay)
{
    for (const SlopeRow &row : kSlopes) {
        SCOPED_TRACE(std::string(row.word) + " " + row.plus);
        InitNominals();
        step.OffsetStep = row.offset;
        step.NominalSlope = row.nominal;
        step.FirstPointWord = row.firstWord;
        step.FirstPointReading = row.firstReading;
        step.StepWordHex = row.word;
        UpdateNominalSlope(ReadingSize(row.plus, row.minus));
        EXPECT_FLOAT_EQ(step.NominalSlope, row.learned);
        const bool learns = row.learned != row.nominal;
        EXPECT_EQ(SlopesDirty, learns);
        if (learns) {
            EXPECT_EQ(GetNominalSlope(32), step.NominalSlope);
            EXPECT_EQ(Format(step.NominalSlope, 4), row.stored);
        }
    }
}

TEST_F(Learning, RoundsEachOperationTo32Bits)
{
    step.OffsetStep = true;
    step.NominalSlope = 9.737f;
    step.FirstPointWord = 0;
    step.FirstPointReading = 18;
    step.StepWordHex = "0001";
    UpdateNominalSlope(200);
    EXPECT_EQ(step.NominalSlope, 8.76384926f);
    EXPECT_EQ(Format(GetNominalSlope(32), 4), "8.7638") << "in 64 bits it would be 8.7639";
}

TEST_F(Learning, LearnsNoSlopeWhenTheWordIsThatOfTheFirstRound)
{
    step.StepWordHex = "8948";
    step.FirstPointWord = 0x8948;
    step.FirstPointReading = 79000;
    UpdateNominalSlope(80000);
    EXPECT_EQ(step.NominalSlope, 3.35f);
    EXPECT_FALSE(SlopesDirty);
}

struct WordRow {
    const char *old, *word;
    bool offset;
    const char *learned;
};

TEST_F(Learning, MovesTheNominalWordATenthOfTheWay)
{
    const WordRow rows[] = {
        {"8948", "8952", false, "8949"}, {"8948", "894D", false, "8948"}, {"8948", "894C", false, "8948"},
        {"8949", "894E", false, "894A"}, {"0660", "0000", true, "05BD"},  {"FFF0", "0010", true, "FFF3"},
        {"0000", "FFFB", true, "0000"},  {"0000", "FFF1", true, "FFFE"},  {"FFFF", "FFFF", true, "FFFF"},
        {"3400", "8100", true, "221A"},  {"3400", "8100", false, "3BB3"}, {"FFFF", "0000", false, "E666"},
    };
    for (const WordRow &row : rows) {
        SCOPED_TRACE(std::string(row.old) + " toward " + row.word);
        SetNominalWord(32, row.old);
        NominalDirty = false;
        UpdateNominalWordFor(32, row.word, row.offset);
        EXPECT_EQ(GetNominalWord(32), row.learned);
        EXPECT_EQ(NominalDirty, std::string(row.old) != row.learned);
        EXPECT_EQ(step.StepNvmWord, 32);
        EXPECT_EQ(step.StepWordHex, row.word);
        EXPECT_EQ(step.OffsetStep, row.offset);
    }
}

}  // namespace
}  // namespace ombrix::test
