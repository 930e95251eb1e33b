#include "links/links_fixture.h"

#include "platform/fault.h"
#include "platform/text.h"

#include <cmath>
#include <set>

using namespace ombrix;
using namespace ombrix::test;

class SimulatedMeter : public LinksTest
{
protected:
    void SetUp() override
    {
        LinksTest::SetUp();
        Simulate();
    }

    static std::string Reply(std::string_view payload) { return SimulateMeterCommand(payload).value_or("nothing"); }
};

TEST_F(SimulatedMeter, StartsWithTheStartWords)
{
    const std::string words =
        "0:03E8 1:D000 2:0007 3:0004 4:0010 9:4E20 10:2000 11:004E 13:2000 14:004E 15:2000 16:0060 17:6536 18:21D1 "
        "20:0503 21:0001 25:52A7 31:8000 32:8948 33:7628 34:7F52 35:7F5D 36:7400 37:75B5 38:7EE0 39:726A 40:ACA9 "
        "41:BB00 42:5000 43:4600 44:4000 45:3E00 47:009C 48:3400 49:9000 50:0660 51:0600 52:0ED6 60:0048 61:FD70 "
        "62:01E0 63:FA20 109:3201 145:0048 146:FD70 147:0048 148:FD70 149:01E0 150:FA20 188:0048 189:FD70 190:01E0 "
        "191:FA20 193:28F6 194:4524 195:FF77 196:0000 197:B810 198:FFD9 199:28F6 200:B820 201:FFD9 241:0048 242:FD70 "
        "243:0048 244:FD70 245:01E0 246:FA20";
    std::array<unsigned, 256> expected{};
    for (const std::string &pair : Split(words, ' ')) {
        const auto parts = Split(pair, ':');
        expected[static_cast<std::size_t>(Val(parts[0]))] = HexValue(parts[1]);
    }
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(SimNvm[i], expected[i]) << i;
}

TEST_F(SimulatedMeter, ItsStartLeavesTheIdentityOfTheMeterAlone)
{
    MeterKind = kCtr;
    SetMeterAddress("2");
    SimNoise = 1;
    SimOneDecimal = true;
    InitMeterSimulator();
    EXPECT_EQ(MeterKind, kCtr);
    EXPECT_EQ(MeterAddr, "2");
    EXPECT_EQ(SimNoise, 20.0f);
    EXPECT_FALSE(SimOneDecimal);
}

TEST_F(SimulatedMeter, WordsAreReadDownward)
{
    EXPECT_EQ(Reply("X16DZ"), "3201");
    EXPECT_EQ(Reply("X432"), "0660"
                             "9000"
                             "3400"
                             "009C");
}

TEST_F(SimulatedMeter, WordsAreWrittenDownwardAsPatterns)
{
    SimulateMeterCommand("W350FFFF80007FFFZ");
    EXPECT_EQ(SimNvm[80], 0xFFFF);
    EXPECT_EQ(SimNvm[79], 0x8000);
    EXPECT_EQ(SimNvm[78], 0x7FFF);
    EXPECT_EQ(Reply("X350"), "FFFF80007FFF");
}

TEST_F(SimulatedMeter, AWriteShorterThanItsCountStoresTheWholeWordsThatCame)
{
    SimNvm[79] = 0x1234;
    SimulateMeterCommand("W350ABCD56");
    EXPECT_EQ(SimNvm[80], 0xABCD);
    EXPECT_EQ(SimNvm[79], 0x1234);
}

TEST_F(SimulatedMeter, BytesOfWorkingMemoryAre65)
{
    EXPECT_EQ(Reply("G232"), "6565");
    EXPECT_EQ(Reply("G130"), "65");
    EXPECT_EQ(Reply("GZ30").size(), 70u) << "also beyond 16 bytes";
}

TEST_F(SimulatedMeter, CommandsWithoutReplyHaveNone)
{
    for (const char *payload : {"A1", "C0", "CZ", "V6", "F1300F", "W150ABCDZ", "", "?"})
        EXPECT_EQ(Reply(payload), "nothing") << payload;
    EXPECT_EQ(SimNvm[0x30], 0x3400) << "a write of working memory touches no word";
}

TEST_F(SimulatedMeter, DisplayIsAWholeNumberWithAPoint)
{
    SimNominal = 80000;
    SimNoise = 0;
    EXPECT_EQ(Reply("B1"), "80000.");
    SimNominal = -80000;
    EXPECT_EQ(Reply("B1"), "-80000.");
    SimNominal = 18.5f;
    EXPECT_EQ(Reply("B1"), "18.") << "ties to even";
    SimNominal = 19.5f;
    EXPECT_EQ(Reply("B1"), "20.");
    SimNominal = -0.5f;
    EXPECT_EQ(Reply("B1"), "0.");
}

TEST_F(SimulatedMeter, DisplayOfATemperatureCarriesOneDecimal)
{
    SimNoise = 0;
    SimOneDecimal = true;
    SimNominal = 1356.4f;
    EXPECT_EQ(Reply("B1"), "1356.4");
    SimNominal = 0;
    EXPECT_EQ(Reply("B1"), "0.0");
    SimNominal = -0.04f;
    EXPECT_EQ(Reply("B1"), "0.0") << "a zero has no sign";
}

TEST_F(SimulatedMeter, DisplayScattersWithinTheNoiseOnBothSides)
{
    SeedMeterSimulator(7);
    SimNominal = 1000;
    SimNoise = 20;
    std::set<double> seen;
    for (int i = 0; i < 1000; ++i) {
        seen.insert(Val(Reply("B1")));
        EXPECT_LE(std::fabs(SimReading - SimNominal), 20.0f);
    }
    EXPECT_LE(*seen.begin(), 982);
    EXPECT_GE(*seen.rbegin(), 1018);
}

TEST_F(SimulatedMeter, OneSeedGivesOneScatter)
{
    SeedMeterSimulator(42);
    const std::string first = Reply("B1") + Reply("B1");
    SeedMeterSimulator(42);
    EXPECT_EQ(Reply("B1") + Reply("B1"), first);
}

TEST_F(SimulatedMeter, AWriteAtAnotherAddressShowsTheSwitch)
{
    const auto before = SimNvm;
    SimulateMeterCommand("W305002B67100000", "2");
    EXPECT_EQ(switchText, "11111");
    SimulateMeterCommand("W305000000100000", "2");
    EXPECT_EQ(switchText, "0");
    EXPECT_EQ(SimNvm, before);
}

TEST_F(SimulatedMeter, AWordOutsideItsMemoryReads0000AndAWriteIsDropped)
{
    EXPECT_EQ(Reply("X301"), "D00003E80000");
    SimulateMeterCommand("W301111122223333");
    EXPECT_EQ(SimNvm[1], 0x1111);
    EXPECT_EQ(SimNvm[0], 0x2222);
}

TEST_F(SimulatedMeter, AWordOutsideItsMemoryIsAFaultWhileTheLinkOpens)
{
    const ScopedFlag opening(SimAddressFaults);
    for (const char *payload : {"X301", "W301111122223333"}) {
        try {
            SimulateMeterCommand(payload);
            ADD_FAILURE() << payload;
        } catch (const RuntimeFault &fault) {
            EXPECT_EQ(fault.Number(), 9);
            EXPECT_STREQ(fault.what(), "Subscript out of range");
        }
    }
}

TEST_F(SimulatedMeter, CanLoseItsBoardCode)
{
    ClearSimWord21();
    EXPECT_EQ(Reply("X115Z"), "0000");
}
