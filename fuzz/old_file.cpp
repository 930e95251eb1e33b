// Fuzzes: src/model/old_files.cpp
// Short: 256
//
// The small files of older stations: fields out of any bytes, and fields that were written as they are quoted.

#include "fuzz/support/case.h"
#include "fuzz/support/folder.h"
#include "model/old_files.h"
#include "platform/text.h"

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

void RequireFields(const std::string &bytes)
{
    const std::string path = WriteFileOfCase("old", bytes);
    const auto fields = FieldsOfOldFile(path);
    Require(fields.size() <= bytes.size(), "a field takes a byte at least");
    for (const std::size_t i : {std::size_t{0}, fields.size() / 2, fields.size() - 1, fields.size()})
        Require(FieldOfOldFile(path, i) == (i < fields.size() ? fields[i] : ""), "a field by its number is that one");
    for (const std::string &field : fields) {
        Require(field.find_first_of("\r\n") == std::string::npos, "a field is in one line");
        Require(Holds(bytes, field) && Trim(field) == field, "a field stands in its file");
    }
    const std::string line = FirstLineOfOldFile(path);
    Require(line.find_first_of("\r\n") == std::string::npos && Holds(bytes, line), "the first line is one line");
}

// Fields a line, quoted as older stations did it.
void RequireReadBack(const std::string &text, int perLine)
{
    std::vector<std::string> fields;
    std::string bytes;
    for (std::string field : Split(text, ',')) {
        std::erase_if(field, [](char c) { return c == '"' || c == '\r' || c == '\n'; });
        field = Trim(field);
        bytes += fields.empty() ? "" : fields.size() % static_cast<std::size_t>(perLine) == 0 ? "\r\n" : ",";
        bytes += "\"" + field + "\"";
        fields.push_back(field);
    }
    Require(FieldsOfOldFile(WriteFileOfCase("old", bytes)) == fields, "fields that were written are read");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    const int perLine = input.Below(8);
    if (perLine == 0)
        RequireFields(input.Rest());
    else
        RequireReadBack(input.Rest(), perLine);
    return 0;
}
