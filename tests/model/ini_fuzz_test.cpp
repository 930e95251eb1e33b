// Files that no station wrote: nothing may crash, and what was understood once is understood again.

#include <random>

#include "model/ini_store.h"
#include "model/settings_folder.h"
#include "support/usable_settings.h"

using namespace ombrix;

namespace {

class IniFuzz : public SettingsFolder
{
protected:
    static void LoadBytes(const std::string &bytes)
    {
        Write("Ombrix.ini", bytes);
        LoadIni();
        IniReady = true;
    }

    static std::string SaveAgain()
    {
        const std::string before = Read("Ombrix.ini");
        IniDirty = true;
        SaveIni();
        const std::string after = Read("Ombrix.ini");
        EXPECT_TRUE(!IniDirty || after == before) << "what wasn't understood at all stays as it was";
        return after;
    }

    /// Saves, loads and saves: the second file must be the first.
    static void ExpectStable(const std::string &hint)
    {
        const std::string first = SaveAgain();
        LoadIni();
        EXPECT_TRUE(SaveAgain() == first) << hint;
    }
};

// Bytes that the reader looks at come often, the rest now and then.
std::string RandomBytes(std::mt19937 &random, std::size_t length)
{
    static const std::string pieces[] = {"[", "]",   "=", "\n", "\r\n", "\r", " ",          "\t",
                                         "A", "Key", ".", "1",  "[S]",  "x=", "[S]\nK=v\n", std::string(1, '\0')};
    std::string bytes;
    while (bytes.size() < length) {
        const unsigned pick = random() % 20;
        bytes += pick < std::size(pieces) ? pieces[pick] : std::string(1, static_cast<char>(random() % 256));
    }
    return bytes;
}

}  // namespace

TEST_F(IniFuzz, RandomTextIsReadTheSameAfterASave)
{
    for (unsigned seed = 0; seed < 250; ++seed) {
        std::mt19937 random(seed);
        LoadBytes(RandomBytes(random, random() % 400));
        ExpectStable("seed " + std::to_string(seed));
    }
}

TEST_F(IniFuzz, LongRandomTextBeyondTheCapacityIsReadTheSameAfterASave)
{
    for (unsigned seed = 0; seed < 10; ++seed) {
        std::mt19937 random(seed);
        LoadBytes(RandomBytes(random, 60000));
        ExpectStable("seed " + std::to_string(seed));
    }
}

TEST_F(IniFuzz, PlainRandomBytesAreReadTheSameAfterASave)
{
    for (unsigned seed = 0; seed < 80; ++seed) {
        std::mt19937 random(seed);
        std::string bytes = "[S]\n";
        for (unsigned i = random() % 2000; i > 0; --i)
            bytes += static_cast<char>(random() % 256);
        LoadBytes(bytes);
        ExpectStable("seed " + std::to_string(seed));
    }
}

TEST_F(IniFuzz, AStationStartsOnAnyDamageOfItsOwnFile)
{
    Start();
    const std::string good = Read("Ombrix.ini");
    for (unsigned seed = 0; seed < 50; ++seed) {
        std::mt19937 random(seed);
        std::string bytes = good;
        for (int i = 0; i < 30; ++i) {
            const std::size_t at = random() % bytes.size();
            switch (random() % 3) {
            case 0:
                bytes[at] = static_cast<char>(random() % 256);
                break;
            case 1:
                bytes.erase(at, random() % 20);
                break;
            default:
                bytes.insert(at, RandomBytes(random, random() % 20));
            }
        }
        Write("Ombrix.ini", bytes);
        Start();
        EXPECT_EQ(test::UnusableSetting(), "") << seed;
        const std::string settled = Read("Ombrix.ini");
        Start();
        EXPECT_EQ(Read("Ombrix.ini"), settled) << seed;
    }
}

TEST_F(IniFuzz, ALineOfTenMegabytesIsKept)
{
    const std::string value(10'000'000, 'x');
    LoadBytes("[S]\nBig=" + value + "\nSmall=1\n");
    EXPECT_TRUE(IniGet("S", "Big") == value);
    EXPECT_EQ(IniGet("S", "Small"), "1");
    ExpectStable("10 MB");
    LoadBytes(value);
    EXPECT_EQ(FindIniSection("S"), -1);
}

TEST_F(IniFuzz, ANulIsAByteLikeAnother)
{
    const std::string nul(1, '\0');
    LoadBytes("[S" + nul + "]\nK" + nul + "=v" + nul + "w\n");
    EXPECT_EQ(IniGet("S" + nul, "K" + nul), "v" + nul + "w");
    ExpectStable("NUL");
}
