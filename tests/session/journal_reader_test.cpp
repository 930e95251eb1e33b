#include "journal_fixture.h"

#include <fcntl.h>
#include <unistd.h>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr const char *kFile = "cut.jsonl";

struct JournalReader : JournalTest {
    // Three whole lines of a real journal, with their line ends.
    JournalReader()
    {
        Open();
        Record("round", {{"reading", "Ω 1.9"}});
        CloseJournal();
        whole = Bytes("2026-11");
        all = ReadJournalFile(Path("2026-11"));
    }

    static std::vector<JournalEvent> Read(const std::string &bytes)
    {
        Put(kFile, bytes);
        return ReadJournalFile(kFile);
    }

    static std::string Line(const JournalEvent &event)
    {
        return JournalLine(event.seq, JournalContent(event), event.prev);
    }

    static std::optional<JournalTail> Tail()
    {
        AppendFile file;
        EXPECT_TRUE(file.OpenToRead(kFile));
        return ReadJournalTail(file);
    }

    static std::optional<JournalTail> TailOf(const std::string &bytes)
    {
        Put(kFile, bytes);
        return Tail();
    }

    std::vector<JournalEvent> First(std::size_t count) const
    {
        return {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(count)};
    }

    std::string whole;
    std::vector<JournalEvent> all;
};

}  // namespace

TEST_F(JournalReader, GivesTheEventsInTheirOrder)
{
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0].kind + all[1].kind + all[2].kind, "startroundend");
    EXPECT_EQ(TextOf(all[1], "reading"), "Ω 1.9");
    EXPECT_EQ(all[1].utc, "2026-11-22T01:39:00.123Z");
    EXPECT_EQ(all[1].station, "Bench 7");
    EXPECT_EQ(all[1].version, "1.2.3");
    EXPECT_EQ(all[1].seq, 2);
    EXPECT_EQ(all[1].prev, all[0].hash);
}

TEST_F(JournalReader, GivesEveryWholeLineOfAFileCutAnywhere)
{
    for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
        const std::string bytes = whole.substr(0, cut);
        // Whole is a line whose last brace is there, with its line end or without.
        std::size_t lines = 0;
        for (std::size_t at = whole.find('\n'); at != std::string::npos && at <= cut; at = whole.find('\n', at + 1))
            ++lines;
        EXPECT_EQ(Read(bytes), First(lines)) << "cut at " << cut;
        const auto tail = Tail();
        ASSERT_TRUE(tail);
        EXPECT_EQ(tail->last, lines > 0 ? std::optional(all[lines - 1]) : std::nullopt) << "cut at " << cut;
        EXPECT_EQ(tail->insideLine, cut > 0 && bytes.back() != '\n') << "cut at " << cut;
    }
}

TEST_F(JournalReader, LosesOnlyTheLineThatIsDamaged)
{
    const std::size_t first = whole.find('\n') + 1;
    const std::size_t body = whole.find("\"body\":", first);
    const std::size_t end = whole.find('\n', first) - 1;
    const std::vector<JournalEvent> others{all[0], all[2]};
    for (const std::string &damage :
         {std::string(5, '\0'), std::string("\xff\xfe"), std::string("}{"), std::string("#\n#")})
        for (const std::size_t place : {first, body, end}) {
            std::string bytes = whole;
            bytes.insert(place, damage);
            EXPECT_TRUE(Read(bytes) == others) << bytes;
            EXPECT_EQ(Tail()->last, all[2]);
        }
    for (const std::string &damage :
         {std::string(5, '\0'), std::string("\xff"), std::string("\t"), std::string("\n")}) {
        std::string bytes = whole;
        bytes.insert(whole.find("1.9"), damage);
        EXPECT_TRUE(Read(bytes) == others) << "inside a text: " << bytes;
    }
}

TEST_F(JournalReader, FindsItsWayOverGarbage)
{
    const std::string zeros(200'000, '\0');
    const std::string noise = "\n\n\xff\xff\n{}\n[1,2]\nnull\n{\"seq\":1}\n";
    EXPECT_EQ(Read(noise + whole + noise + zeros), all);
    EXPECT_EQ(TailOf(noise + whole + noise + zeros)->last, all[2]);
    EXPECT_TRUE(TailOf(whole + zeros)->insideLine);
    EXPECT_EQ(Read(noise), std::vector<JournalEvent>());
    EXPECT_EQ(TailOf(noise)->last, std::nullopt);
    EXPECT_EQ(Read(""), std::vector<JournalEvent>());
    EXPECT_EQ(ReadJournalFile("no-such-file"), std::vector<JournalEvent>());
}

TEST_F(JournalReader, ALineThatIsTooLongIsNoEventAndHidesNoOther)
{
    JournalEvent big = all[1];
    big.body = {{"text", std::string(kLongestJournalLine, 'x')}};
    const std::string tooLong = Line(big) + "\n";
    EXPECT_EQ(Read(whole + tooLong + whole).size(), 6u);
    EXPECT_EQ(TailOf(whole + tooLong)->last, all[2]);
    // Neither what stands at the end of such a line nor at its beginning becomes one.
    const std::string one = whole.substr(0, whole.find('\n'));
    const std::string filling(kLongestJournalLine, ' ');
    EXPECT_EQ(Read(filling + one + "\n").size(), 0u);
    EXPECT_EQ(TailOf(one + filling)->last, std::nullopt);
    EXPECT_EQ(Read(filling + filling + one + "\n" + whole).size(), 3u) << "its beginning isn't at hand any more";
    JournalEvent fits = all[1];
    fits.body = {{"text", std::string(kLongestJournalLine / 2, 'x')}};
    EXPECT_EQ(Read(Line(fits)).size(), 1u);
    EXPECT_EQ(TailOf(Line(fits) + "\n")->last->kind, "round");
}

TEST_F(JournalReader, ReadsAFileLongerThanItsPieces)
{
    std::string bytes;
    while (bytes.size() < 300'000)
        bytes += whole;
    const auto events = Read(bytes);
    EXPECT_EQ(events.size(), bytes.size() / whole.size() * 3);
    EXPECT_EQ(events.back(), all[2]);
}

TEST_F(JournalReader, TheEndOfALongFileTakesOneLook)
{
    const int handle = open(kFile, O_RDWR | O_CREAT | O_TRUNC, 0600);
    ASSERT_EQ(pwrite(handle, ("\n" + whole).data(), whole.size() + 1, 100 << 20),
              static_cast<ssize_t>(whole.size()) + 1);
    close(handle);
    int looks = 0;
    UseFileFaults([&looks](FileCall call) {
        looks += call == FileCall::Read ? 1 : 0;
        return FileFault();
    });
    AppendFile file;
    ASSERT_TRUE(file.OpenToRead(kFile));
    EXPECT_EQ(ReadJournalTail(file)->last, all[2]);
    EXPECT_EQ(looks, 1);
}

TEST_F(JournalReader, AnEndThatCannotBeReadIsNotTakenForAnEmptyFile)
{
    AppendFile file;
    ASSERT_TRUE(file.OpenToRead(Path("2026-11")));
    for (const FileCall failing : {FileCall::Size, FileCall::Read}) {
        UseFileFaults([failing](FileCall call) { return FileFault{call == failing ? EIO : 0, 0}; });
        EXPECT_FALSE(ReadJournalTail(file));
    }
}

TEST_F(JournalReader, MonthsAreReadInTheOrderOfTheirEvents)
{
    Open();  // 4
    now = Moment("2027-01-01T00:00:00.000Z");
    Record("next", {});  // 5, January
    now = Moment("2026-11-30T23:00:00.000Z");
    Record("back", {});  // 6, November again
    CloseJournal();      // 7
    Put("station/Journal/notes.txt", whole);
    Put("station/Journal/2026-11.jsonl.old", whole);
    ASSERT_TRUE(QDir().mkdir("station/Journal/2026-12.jsonl"));
    const auto events = ReadJournal("station");
    ASSERT_EQ(events.size(), 7u);
    for (std::size_t place = 0; place < events.size(); ++place)
        EXPECT_EQ(events[place].seq, static_cast<std::int64_t>(place) + 1);
    EXPECT_EQ(events[4].kind, "next");
    EXPECT_EQ(LastJournalEvent("station"), events.back());
    EXPECT_EQ(ChainTrouble(events), std::nullopt);
    EXPECT_TRUE(ReadJournal("no-such-station").empty());
}

TEST_F(JournalReader, TheChainTellsAChangedAMissingAndAnAddedLine)
{
    EXPECT_EQ(ChainTrouble(all), std::nullopt);
    EXPECT_EQ(ChainTrouble({}), std::nullopt);
    EXPECT_EQ(ChainTrouble({all[1], all[2]}), std::nullopt) << "older months may lie elsewhere";
    EXPECT_EQ(ChainTrouble({all[0], all[2]}), 1u);
    EXPECT_EQ(ChainTrouble({all[0], all[1], all[1], all[2]}), 2u);
    std::string changed = whole;
    changed.replace(changed.find("1.9"), 3, "1.8");
    EXPECT_EQ(ChainTrouble(Read(changed)), 2u);
    JournalEvent first = all[0];
    first.prev = all[2].hash;
    EXPECT_EQ(ChainTrouble({first}), 0u);
}
