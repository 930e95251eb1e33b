// The programs as they lie on the disk: hardened, each of them. And that what is built this way ends where it would
// otherwise go on with what isn't its own. Not part of a build with address checks, nor of one that counts lines.
//
// They are those of the build, or those in the folder that OMBRIX_PROGRAMS names.

#include "platform/line_guard.h"
#include "platform/safe_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <elf.h>
#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

using namespace ombrix;
using testing::Contains;

namespace {

struct Program {
    const char *name;
    const char *path;
    bool plainC;  // without the C++ library; it fills nothing whose size is known only when it runs
};

const Program kPrograms[] = {
    {"Station", OMBRIX_PROGRAM, false},
    {"Guard", OMBRIX_GUARD, true},
    {"Testbench", OMBRIX_TESTBENCH, false},
};

std::string PathOf(const Program &program)
{
    const char *folder = std::getenv("OMBRIX_PROGRAMS");
    return folder ? std::filesystem::path(folder) / std::filesystem::path(program.path).filename() : program.path;
}

void PrintTo(const Program &program, std::ostream *out)
{
    *out << program.name;
}

// What the loader reads of a program before it runs. Files of this machine, 64 bits.
class Image
{
public:
    explicit Image(const std::string &path) : m_bytes(ReadFile(path).value_or(""))
    {
        if (m_bytes.size() < sizeof(Elf64_Ehdr) || m_bytes.compare(0, SELFMAG, ELFMAG) != 0 ||
            m_bytes[EI_CLASS] != ELFCLASS64)
            m_bytes.clear();
    }

    bool Stands() const { return !m_bytes.empty(); }
    int Type() const { return At<Elf64_Ehdr>(0).e_type; }

    std::optional<Elf64_Phdr> Segment(Elf64_Word type) const
    {
        const Elf64_Ehdr head = At<Elf64_Ehdr>(0);
        for (int i = 0; i < head.e_phnum; ++i)
            if (const auto each = At<Elf64_Phdr>(head.e_phoff + i * sizeof(Elf64_Phdr)); each.p_type == type)
                return each;
        return std::nullopt;
    }

    // The value of a line of the table that tells the loader what to do, 0 when it isn't there.
    Elf64_Xword Dynamic(Elf64_Sxword tag) const
    {
        const std::optional<Elf64_Phdr> table = Segment(PT_DYNAMIC);
        if (!table)
            return 0;
        for (Elf64_Xword at = 0; at < table->p_filesz; at += sizeof(Elf64_Dyn))
            if (const auto each = At<Elf64_Dyn>(table->p_offset + at); each.d_tag == tag)
                return each.d_un.d_val;
        return 0;
    }

    // The names of what it takes from libraries.
    std::vector<std::string> Imports() const
    {
        std::vector<std::string> names;
        const Elf64_Ehdr head = At<Elf64_Ehdr>(0);
        for (int i = 0; i < head.e_shnum; ++i) {
            const auto section = At<Elf64_Shdr>(head.e_shoff + i * sizeof(Elf64_Shdr));
            if (section.sh_type != SHT_DYNSYM)
                continue;
            const auto text = At<Elf64_Shdr>(head.e_shoff + section.sh_link * sizeof(Elf64_Shdr));
            for (Elf64_Xword at = 0; at < section.sh_size; at += sizeof(Elf64_Sym))
                if (const auto each = At<Elf64_Sym>(section.sh_offset + at); each.st_shndx == SHN_UNDEF)
                    names.emplace_back(m_bytes.c_str() + std::min(text.sh_offset + each.st_name, m_bytes.size()));
        }
        return names;
    }

private:
    template <class Record> Record At(Elf64_Off offset) const
    {
        Record record{};
        if (offset <= m_bytes.size() && m_bytes.size() - offset >= sizeof record)
            std::memcpy(&record, m_bytes.data() + offset, sizeof record);
        return record;
    }

    std::string m_bytes;
};

class Hardened : public testing::TestWithParam<Program>
{
protected:
    Hardened() : image(PathOf(GetParam())) {}
    void SetUp() override { ASSERT_TRUE(image.Stands()) << PathOf(GetParam()); }

    const Image image;
};

bool ChecksSizes(const std::string &function)
{
    constexpr std::string_view kEnd = "_chk";
    return function.size() > kEnd.size() && function.compare(function.size() - kEnd.size(), kEnd.size(), kEnd) == 0;
}

}  // namespace

TEST_P(Hardened, LiesElsewhereInMemoryInEachRun)
{
    EXPECT_EQ(image.Type(), ET_DYN);
    EXPECT_TRUE(image.Dynamic(DT_FLAGS_1) & DF_1_PIE);
    EXPECT_EQ(image.Dynamic(DT_TEXTREL), 0U);
}

TEST_P(Hardened, LocksItsTableOfFunctionsBeforeItRuns)
{
    EXPECT_TRUE(image.Segment(PT_GNU_RELRO));
    EXPECT_TRUE((image.Dynamic(DT_FLAGS) & DF_BIND_NOW) || (image.Dynamic(DT_FLAGS_1) & DF_1_NOW));
}

TEST_P(Hardened, RunsNothingThatStandsOnItsStack)
{
    const std::optional<Elf64_Phdr> stack = image.Segment(PT_GNU_STACK);
    ASSERT_TRUE(stack);
    EXPECT_FALSE(stack->p_flags & PF_X);
}

TEST_P(Hardened, GuardsItsStackItsBuffersAndItsContainers)
{
    const std::vector<std::string> imports = image.Imports();
    EXPECT_THAT(imports, Contains("__stack_chk_fail"));
    if (GetParam().plainC)
        return;
    EXPECT_TRUE(std::any_of(imports.begin(), imports.end(), ChecksSizes));
    EXPECT_THAT(imports, Contains("_ZSt21__glibcxx_assert_failPKciS0_S0_"));
}

INSTANTIATE_TEST_SUITE_P(Programs, Hardened, testing::ValuesIn(kPrograms),
                         [](const auto &each) { return std::string(each.param.name); });

TEST(HardenedBuild, EndsAtAnIndexBehindAVector)
{
    const std::vector<int> three(3);
    volatile std::size_t index = 3;
    EXPECT_DEATH({ std::printf("%d", three[index]); }, "Assertion .* failed");
}

TEST(HardenedBuild, EndsAtACopyIntoABufferThatIsTooSmall)
{
    volatile std::size_t size = 8;  // known only when it runs: the third level sees that too
    volatile std::size_t count = 9;
    const std::array<char, 16> source{};
    EXPECT_DEATH(
        {
            const std::size_t asked = size;
            auto *room = static_cast<char *>(std::malloc(asked));
            std::memcpy(room, source.data(), count);
            std::printf("%c", room[0]);
        },
        "buffer overflow detected");
}

// A path goes to the system as it is: no shell takes it apart.
TEST(GuardProgram, IsStartedFromAPathThatAShellWouldRun)
{
    const QTemporaryDir folder;
    const QString odd = folder.filePath("a 'b' \"c\"; touch ran; $(touch ran) `touch ran` & #");
    ASSERT_TRUE(QDir().mkpath(odd));
    ASSERT_TRUE(QFile::copy(OMBRIX_GUARD, odd + "/ombrix-guard"));
    const QString before = QDir::currentPath();
    QDir::setCurrent(folder.path());
    EXPECT_TRUE(StartGuard((odd + "/ombrix-guard").toStdString()));
    EXPECT_TRUE(GuardStands());
    EndGuard();
    QDir::setCurrent(before);
    EXPECT_FALSE(QFile::exists(folder.filePath("ran")));
}
