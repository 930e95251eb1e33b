#include "model/old_files.h"

#include <string_view>

#include "platform/safe_file.h"
#include "platform/text.h"

namespace ombrix {
namespace {

std::vector<std::string> LinesOfFile(const std::string &path)
{
    std::string bytes = ReadFile(path).value_or("");
    for (char &c : bytes)
        c = c == '\r' ? '\n' : c;
    return Split(bytes, '\n');
}

std::string WithoutQuotes(const std::string &text)
{
    const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return quoted ? Trim(std::string_view(text).substr(1, text.size() - 2)) : text;
}

// Takes one field off the front of a line. A comma between quotes belongs to the field.
std::string TakeField(std::string_view &line)
{
    const std::size_t start = line.find_first_not_of(" \t");
    const bool quoted = start != std::string_view::npos && line[start] == '"';
    const std::size_t quote = quoted ? line.find('"', start + 1) : std::string_view::npos;
    const std::size_t comma = line.find(',', quote == std::string_view::npos ? 0 : quote);
    std::string field = WithoutQuotes(Trim(line.substr(0, comma)));
    line.remove_prefix(comma == std::string_view::npos ? line.size() : comma + 1);
    return field;
}

}  // namespace

std::vector<std::string> FieldsOfOldFile(const std::string &path)
{
    std::vector<std::string> fields;
    for (const std::string &text : LinesOfFile(path)) {
        std::string_view line = text;
        if (Trim(line).empty())
            continue;
        while (!line.empty())
            fields.push_back(TakeField(line));
    }
    return fields;
}

std::string FieldOfOldFile(const std::string &path, std::size_t index)
{
    const std::vector<std::string> fields = FieldsOfOldFile(path);
    return index < fields.size() ? fields[index] : "";
}

std::string FirstLineOfOldFile(const std::string &path)
{
    return WithoutQuotes(Trim(LinesOfFile(path).front()));
}

}  // namespace ombrix
