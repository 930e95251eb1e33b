#include "guide/source_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <regex>
#include <sstream>
#include <utility>

namespace ombrix::test {
namespace {

bool IsNameLetter(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

// A bracket that is open, or was.
struct Bracket {
    char kind;
    std::string name;  // what stands before it
    bool hasStatements = false;
    bool hasTrue = false;
};

// Reads a source once, from left to right.
class Reader
{
public:
    Reader(const std::string &source, std::string file) : m_source(source), m_file(std::move(file)) {}

    std::vector<Literal> Literals()
    {
        while (m_at < m_source.size())
            ReadOne();
        for (std::size_t i = 0; i < m_literals.size(); ++i)
            TellPlace(m_literals[i], m_places[i]);
        return m_literals;
    }

private:
    bool Begins(const char *text) const
    {
        return m_source.compare(m_at, std::char_traits<char>::length(text), text) == 0;
    }
    void SkipTo(const char *end, std::size_t behind)
    {
        const std::size_t found = m_source.find(end, m_at);
        const std::size_t next = found == std::string::npos ? m_source.size() : found + behind;
        m_line += static_cast<int>(std::count(m_source.begin() + static_cast<std::ptrdiff_t>(m_at),
                                              m_source.begin() + static_cast<std::ptrdiff_t>(next), '\n'));
        m_at = next;
    }
    // The text up to the closing quote, without escapes.
    std::string ReadQuoted(char quote)
    {
        std::string text;
        for (++m_at; m_at < m_source.size() && m_source[m_at] != quote; ++m_at) {
            if (m_source[m_at] != '\\') {
                text += m_source[m_at];
                continue;
            }
            const char escaped = m_source[++m_at];
            text += escaped == 'n' || escaped == 'r' || escaped == 't' ? ' ' : escaped;
        }
        ++m_at;
        return text;
    }
    void TakeLiteral()
    {
        const int line = m_line;
        const std::string text = ReadQuoted('"');
        if (m_previous == "\"") {
            m_literals.back().text += text;
            return;
        }
        m_literals.push_back({m_file, line, text, {}});
        m_places.push_back(m_open);
        m_previous = "\"";
    }
    void TakeSign(char c)
    {
        if (c == '(' || c == '[' || c == '{') {
            m_brackets.push_back({c, IsNameLetter(m_previous.back()) ? m_previous : ""});
            m_open.push_back(m_brackets.size() - 1);
        } else if ((c == ')' || c == ']' || c == '}') && !m_open.empty()) {
            m_open.pop_back();
        } else if (c == ';' && !m_open.empty()) {
            m_brackets[m_open.back()].hasStatements = true;
        }
        m_previous = c;
        ++m_at;
    }
    void TakeName()
    {
        const std::size_t begin = m_at;
        while (m_at < m_source.size() && IsNameLetter(m_source[m_at]))
            ++m_at;
        m_previous = m_source.substr(begin, m_at - begin);
        if (m_previous == "true" && !m_open.empty())
            m_brackets[m_open.back()].hasTrue = true;
    }
    void TakeBlank(char c)
    {
        if (c == '\n')
            ++m_line;
        ++m_at;
    }
    void ReadOne()
    {
        const char c = m_source[m_at];
        if (Begins("//") || Begins("#include"))
            SkipTo("\n", 0);
        else if (Begins("/*"))
            SkipTo("*/", 2);
        else if (c == '\n' || c == ' ')
            TakeBlank(c);
        else if (c == '"')
            TakeLiteral();
        else if (c == '\'' && std::isdigit(static_cast<unsigned char>(m_previous.back())) == 0) {
            ReadQuoted('\'');
            m_previous = "'";
        } else if (IsNameLetter(c))
            TakeName();
        else
            TakeSign(c);
    }
    // A brace without statements holds values. A call between it and the text makes of them what it is named for.
    void TellPlace(Literal &literal, const std::vector<std::size_t> &place) const
    {
        for (const std::size_t bracket : place)
            if (m_brackets[bracket].kind == '(' && !m_brackets[bracket].name.empty())
                literal.calls.push_back(m_brackets[bracket].name);
        const auto around = std::find_if(place.rbegin(), place.rend(), [this](std::size_t bracket) {
            return m_brackets[bracket].kind != '(' || !m_brackets[bracket].name.empty();
        });
        if (around == place.rend())
            return;
        literal.data = m_brackets[*around].kind == '{' && !m_brackets[*around].hasStatements;
        literal.red = literal.data && m_brackets[*around].hasTrue;
    }

    const std::string &m_source;
    std::string m_file;
    std::size_t m_at = 0;
    int m_line = 1;
    std::string m_previous = " ";  // the last name or sign
    std::vector<Bracket> m_brackets;
    std::vector<std::size_t> m_open;
    std::vector<Literal> m_literals;
    std::vector<std::vector<std::size_t>> m_places;
};

std::vector<std::string> Split(const std::string &text, const std::string &separator)
{
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + separator.size()) {
        end = text.find(separator, begin);
        parts.push_back(Plain(text.substr(begin, end == std::string::npos ? end : end - begin)));
    }
    return parts;
}

}  // namespace

std::vector<Literal> LiteralsIn(const std::string &source, const std::string &file)
{
    return Reader(source, file).Literals();
}

std::vector<Literal> LiteralsBelow(const std::filesystem::path &folder)
{
    std::vector<Literal> all;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() != ".cpp" && entry.path().extension() != ".h")
            continue;
        const auto more = LiteralsIn(TextOf(entry.path()), std::filesystem::relative(entry.path(), folder).string());
        all.insert(all.end(), more.begin(), more.end());
    }
    return all;
}

std::string Plain(const std::string &text)
{
    std::string plain;
    for (const char c : text) {
        const bool blank = std::isspace(static_cast<unsigned char>(c)) != 0;
        if (!blank)
            plain += c;
        else if (!plain.empty() && plain.back() != ' ')
            plain += ' ';
    }
    if (!plain.empty() && plain.back() == ' ')
        plain.pop_back();
    return plain;
}

std::vector<std::string> FixedParts(const std::string &text)
{
    static const std::regex value(R"(%\d|%s|\.\.\.)");
    std::vector<std::string> parts = Split(std::regex_replace(text, value, "\x01"), "\x01");
    std::erase(parts, "");
    return parts;
}

bool IsProse(const std::string &text)
{
    static const std::regex word("[A-Za-z']{2,}");
    static const std::regex small("[a-z]{2}");
    const auto words = std::distance(std::sregex_iterator(text.begin(), text.end(), word), std::sregex_iterator());
    return words >= 2 && std::regex_search(text, small) && Plain(text).find(' ') != std::string::npos;
}

bool IsMadeOf(const std::string &text, const std::vector<std::string> &pieces)
{
    std::vector<bool> reached(text.size() + 1, false);
    reached[0] = true;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (!reached[at])
            continue;
        if (text[at] == ' ')
            reached[at + 1] = true;
        for (const std::string &piece : pieces)
            if (!piece.empty() && text.compare(at, piece.size(), piece) == 0)
                reached[at + piece.size()] = true;
    }
    return reached[text.size()];
}

std::string TextOf(const std::filesystem::path &file)
{
    std::ifstream in(file);
    EXPECT_TRUE(in) << file;
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::vector<std::vector<std::string>> RowsOfTables(const std::string &markdown)
{
    std::vector<std::vector<std::string>> rows;
    std::istringstream lines(markdown);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("| ") && !line.starts_with("|-"))
            continue;
        if (line.starts_with("|-"))
            rows.pop_back();  // the row before was the head
        else
            rows.push_back(Split(line.substr(1, line.rfind('|') - 1), "|"));
    }
    return rows;
}

std::vector<std::string> QuotedIn(const std::string &markdown)
{
    static const std::regex code("`[^`]*`");
    static const std::regex quoted("\"([^\"]+)\"");
    const std::string text = std::regex_replace(markdown, code, "");
    std::vector<std::string> all;
    for (std::sregex_iterator found(text.begin(), text.end(), quoted); found != std::sregex_iterator(); ++found)
        all.push_back(Plain((*found)[1]));
    return all;
}

}  // namespace ombrix::test
