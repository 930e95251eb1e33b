#include "guide/source_text.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace ombrix::test {

TEST(SourceText, ReadsTextsAsTheyAreShown)
{
    const auto texts =
        LiteralsIn("// \"none\"\n#include \"none.h\"\n/* \"none\" */\n"
                   "const char *k = \"Click \\\"Save\\\"\\r\\n\"\n    \"again\";\nchar c = '\"';\nf(\"x\");",
                   "a.cpp");
    ASSERT_EQ(texts.size(), 2U);
    EXPECT_EQ(Plain(texts[0].text), "Click \"Save\" again");
    EXPECT_EQ(texts[0].line, 4);
    EXPECT_EQ(texts[0].file, "a.cpp");
    EXPECT_THAT(texts[1].calls, ElementsAre("f"));
}

TEST(SourceText, TellsWhereATextStands)
{
    const auto texts =
        LiteralsIn("void f()\n{\n    const Prompt calm = {\"calm\"};\n    Prompt red = {a + \"red\", true};\n"
                   "    Show(states, {over ? \"also red\" : (b + \"red\"), true});\n"
                   "    Record(\"kind\", {{\"field\", true}});\n    g(h(\"inner\"));\n    return \"bare\";\n}",
                   "a.cpp");
    ASSERT_EQ(texts.size(), 8U);
    EXPECT_TRUE(texts[0].data && !texts[0].red);
    EXPECT_TRUE(texts[1].data && texts[1].red);
    EXPECT_TRUE(texts[2].red);
    EXPECT_TRUE(texts[3].red);
    EXPECT_THAT(texts[3].calls, ElementsAre("Show"));
    EXPECT_FALSE(texts[4].data);
    EXPECT_THAT(texts[5].calls, ElementsAre("Record"));
    EXPECT_THAT(texts[6].calls, ElementsAre("g", "h"));
    EXPECT_FALSE(texts[7].data);
}

TEST(SourceText, DividesATextAtItsValues)
{
    EXPECT_THAT(FixedParts("Error on ...: ..."), ElementsAre("Error on", ":"));
    EXPECT_THAT(FixedParts("'%1' is too  much\n"), ElementsAre("'", "' is too much"));
}

TEST(SourceText, KnowsProse)
{
    EXPECT_TRUE(IsProse("not recorded"));
    EXPECT_FALSE(IsProse("silent"));
    EXPECT_FALSE(IsProse("Ombrix.ini"));
    EXPECT_FALSE(IsProse("DC RMS"));
}

TEST(SourceText, PutsATextTogetherOfWholePieces)
{
    EXPECT_TRUE(IsMadeOf("Standby not confirmed:", {"Standby", "not confirmed:"}));
    EXPECT_FALSE(IsMadeOf("Standby not confirmed", {"Standby", "not confirmed:"}));
    EXPECT_FALSE(IsMadeOf("Art", {"Start", "A"}));
}

TEST(SourceText, ReadsAPagesTablesAndQuotes)
{
    const std::string page = "Click **\"Save\nall\"**, not `\"Code\"`.\n\n| Head | Why |\n|---|---|\n| a<br>b | c |\n";
    EXPECT_THAT(RowsOfTables(page), ElementsAre(ElementsAre("a<br>b", "c")));
    EXPECT_THAT(QuotedIn(page), ElementsAre("Save all"));
}

}  // namespace ombrix::test
