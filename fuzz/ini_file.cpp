// Fuzzes: src/model/ini_store.cpp
// Short: 256
//
// The settings' file in any bytes, and any values put into it: what was understood once is understood again.

#include "fuzz/support/case.h"
#include "fuzz/support/folder.h"
#include "model/ini_store.h"
#include "platform/safe_file.h"
#include "platform/text.h"
#include "session/kept_remarks.h"
#include "session/outlets.h"

#include <vector>

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

std::vector<std::string> SectionsIn(const std::string &text)
{
    std::vector<std::string> names;
    for (const std::string &line : Split(text, '\n'))
        if (line.starts_with('[') && line.ends_with(']'))
            names.push_back(line.substr(1, line.size() - 2));
    return names;
}

// The table as it stands, by way of its own questions: section, key and value of each.
std::vector<std::string> Table(const std::vector<std::string> &sections)
{
    std::vector<std::string> table;
    for (const std::string &section : sections)
        for (int i = 0; i < IniKeyCount(section); ++i) {
            const std::string key = IniKeyAt(section, i);
            Require(FindIniKey(section, key) >= 0, "a key that is told is found");
            table.insert(table.end(), {section, key, IniGet(section, key)});
        }
    return table;
}

// Section, key and value, a line each.
void SetSome(Case &input)
{
    for (int i = 0; i < 16 && !input.IsOver(); ++i) {
        const std::string section = Trim(input.Line());
        const std::string key = input.Line();
        const std::string value = input.Line();
        if (value == "-") {
            IniRemove(section, key);
            Require(IniGet(section, key).empty(), "what was removed is gone");
        } else if (IniSet(section, key, value)) {
            Require(IniGet(section, Trim(key)) == Trim(value), "what was set is there");
        }
    }
}

std::string Saved(const std::string &path)
{
    IniDirty = true;
    SaveIni();
    Require(!IniDirty, "a save in a folder of one's own succeeds: " + KeptRemarkOn(Subject::Settings));
    return ReadFile(path).value_or("");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    outlets = Outlets();
    Case input(bytes, size);
    const auto changes = static_cast<std::size_t>(input.Byte());
    const std::string typed = input.Bytes(changes);
    const std::string path = WriteFileOfCase("Ombrix.ini", input.Rest());
    IniReady = true;
    LoadIni(path);
    Case toSet(reinterpret_cast<const std::uint8_t *>(typed.data()), typed.size());
    SetSome(toSet);

    const std::string first = Saved(path);
    const std::vector<std::string> sections = SectionsIn(first);
    Require(sections.size() <= kIniSections, "a file has so many sections at most");
    const std::vector<std::string> table = Table(sections);
    Require(table.size() <= std::size_t{3} * kIniKeys, "a file has so many keys at most");
    LoadIni(path);
    Require(Table(sections) == table, "what was saved is read again");
    Require(Saved(path) == first, "what was read is saved again");
    ReleaseIni();
    return 0;
}
