// The operator's guide names what the program has: its buttons and words, its own chapters, pictures that the tour makes.

#include "guide/source_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace ombrix::test {
namespace {

const std::filesystem::path kProject = PROJECT_FOLDER;
const std::vector<std::string> kPages = {"docs/operator.md", "docs/troubleshooting.md", "docs/maintainer.md",
                                         "README.md",        "CONTRIBUTING.md",         "SECURITY.md",
                                         "CHANGELOG.md"};

// Quoted in the guide, and no text of the program's sources.
const std::map<std::string, std::string> kNotThePrograms = {
    {"10,012", "what an operator types"},
    {"Attempt 2, 13 s: words 17, 3 differ", "an example, with values"},
    {"Gains.sss", "a file"},
    {"Ombrix.sss", "a file"},
    {"OUT 200 mV, operate", "an example, with values"},
    {"Start in the simulator", "the desktop's menu, packaging/ombrix.desktop"},
    {"analog settings", "a kind of event in the journal"},
    {"display 199.87", "an example, with values"},
    {"read words 20..17", "an example, with values"},
};

// Of a message of several clauses the guide may quote the first ones, with the sign behind them or without.
std::vector<std::string> Beginnings(const std::string &text)
{
    std::vector<std::string> all;
    for (std::size_t at = text.find_first_of(".:,"); at != std::string::npos; at = text.find_first_of(".:,", at + 1)) {
        const std::string beginning = text.substr(0, at);
        if (!IsProse(beginning))
            continue;
        all.push_back(beginning);
        all.push_back(beginning + text[at]);
    }
    return all;
}

// What the window shows may be any text but the journal's.
std::map<std::string, std::vector<std::string>> ShownTexts()
{
    std::map<std::string, std::vector<std::string>> texts;
    for (const Literal &literal : LiteralsBelow(kProject / "src"))
        if (std::none_of(literal.calls.begin(), literal.calls.end(),
                         [](const std::string &name) { return name.starts_with("Record"); }))
            for (const std::string &part : FixedParts(literal.text)) {
                texts[literal.file].push_back(part);
                for (const std::string &beginning : Beginnings(part))
                    texts[literal.file].push_back(beginning);
            }
    return texts;
}

std::vector<std::string> Found(const std::string &text, const std::string &pattern)
{
    const std::regex expression(pattern);
    std::vector<std::string> all;
    for (std::sregex_iterator found(text.begin(), text.end(), expression); found != std::sregex_iterator(); ++found)
        all.push_back((*found)[1]);
    return all;
}

// What troubleshooting quotes beside the messages, which have a test of their own.
std::vector<std::string> QuotedInCauseAndCure()
{
    std::vector<std::string> all;
    for (const auto &row : RowsOfTables(TextOf(kProject / "docs/troubleshooting.md")))
        for (std::size_t column = 1; column < row.size(); ++column)
            for (const std::string &quote : QuotedIn(row[column]))
                all.push_back(quote);
    return all;
}

// The name that a link gives a chapter.
std::string Anchor(const std::string &title)
{
    std::string anchor;
    for (const char c : title)
        if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '_')
            anchor += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        else if (c == ' ')
            anchor += '-';
    return anchor;
}

std::set<std::string> AnchorsOf(const std::filesystem::path &page)
{
    std::set<std::string> anchors;
    for (const std::string &title : Found(TextOf(page), "(?:^|\n)#+ ([^\n]+)"))
        anchors.insert(Anchor(title));
    return anchors;
}

}  // namespace

TEST(GuideWords, AreThePrograms)
{
    const auto texts = ShownTexts();
    const std::map<std::string, std::vector<std::string>> quotes = {
        {"docs/operator.md", QuotedIn(TextOf(kProject / "docs/operator.md"))},
        {"docs/troubleshooting.md", QuotedInCauseAndCure()},
    };
    for (const auto &[page, quoted] : quotes)
        for (const std::string &quote : quoted)
            for (const std::string &part : FixedParts(kNotThePrograms.contains(quote) ? "" : quote))
                EXPECT_TRUE(std::any_of(texts.begin(), texts.end(),
                                        [&](const auto &file) { return IsMadeOf(part, file.second); }))
                    << page << " quotes \"" << quote << "\", and the program shows no \"" << part << '"';
    EXPECT_GT(quotes.at("docs/operator.md").size(), 100U);
    EXPECT_GT(quotes.at("docs/troubleshooting.md").size(), 50U);
}

TEST(GuideWords, MakeExceptionsOfNothingThatIsGone)
{
    const auto quotes = QuotedIn(TextOf(kProject / "docs/operator.md"));
    for (const auto &[quote, reason] : kNotThePrograms)
        EXPECT_TRUE(std::find(quotes.begin(), quotes.end(), quote) != quotes.end()) << quote;
}

TEST(Changes, BeginWithThisVersion)
{
    const auto heads = Found(TextOf(kProject / "CHANGELOG.md"), "\n## ([^\n]+)");
    ASSERT_FALSE(heads.empty());
    EXPECT_EQ(heads[0], VERSION) << "the version is raised in CMakeLists.txt and in CHANGELOG.md";
}

TEST(GuideLinks, LeadToFilesAndChaptersThatAreThere)
{
    for (const std::string &page : kPages) {
        const std::filesystem::path file = kProject / page;
        for (const std::string &link : Found(TextOf(file), R"(\]\(([^)\s]+)\))")) {
            const std::size_t hash = link.find('#');
            const std::string path = link.substr(0, hash);
            const std::filesystem::path target = path.empty() ? file : file.parent_path() / path;
            EXPECT_TRUE(std::filesystem::exists(target)) << page << " links to " << link;
            EXPECT_TRUE(hash == std::string::npos || AnchorsOf(target).contains(link.substr(hash + 1)))
                << page << " links to " << link;
        }
    }
}

TEST(GuidePictures, StandInEachChapter)
{
    const std::string guide = TextOf(kProject / "docs/operator.md");
    std::size_t at = guide.find("\n## ");
    while (at != std::string::npos) {
        const std::size_t end = guide.find("\n## ", at + 1);
        const std::string chapter = guide.substr(at + 4, end == std::string::npos ? end : end - at - 4);
        EXPECT_NE(chapter.find("](pictures/"), std::string::npos) << chapter.substr(0, chapter.find('\n'));
        at = end;
    }
    EXPECT_NE(TextOf(kProject / "docs/troubleshooting.md").find("](pictures/"), std::string::npos) << "troubleshooting";
}

TEST(GuidePictures, AreMadeByTheTourAndShown)
{
    std::set<std::string> made;
    for (const Literal &literal : LiteralsBelow(kProject / "tests/tour"))
        made.insert(literal.text);
    std::string pages;
    for (const std::string &page : kPages)
        pages += TextOf(kProject / page);
    for (const auto &entry : std::filesystem::directory_iterator(kProject / "docs/pictures")) {
        const std::string name = entry.path().stem().string();
        EXPECT_TRUE(made.contains(name)) << "the tour makes no picture " << name;
        EXPECT_NE(pages.find("pictures/" + name + ".png"), std::string::npos) << "no page shows " << name;
    }
}

}  // namespace ombrix::test
