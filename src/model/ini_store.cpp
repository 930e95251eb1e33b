#include "model/ini_store.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "platform/folder_hold.h"
#include "platform/safe_file.h"
#include "platform/text.h"
#include "session/kept_remarks.h"
#include "session/outlets.h"

namespace ombrix {

bool IniDirty = false;
bool IniReady = false;

namespace {

struct Section {
    std::string name;
    std::size_t first;  ///< index of its first key
    std::size_t count;
};

// Every section owns one stretch of the keys, never an empty one.
std::vector<Section> sections;
std::vector<IniPair> keys;

std::string iniPath;
std::string obstacle;  // why nothing is saved, "" when the file is usable
std::string loss;      // what this run begins without, "" when the file was understood
FolderHold folderHold;
bool folderIsHeld = false;
bool toldSections = false;
bool toldKeys = false;

void Tell(bool &told, const char *text)
{
    if (told)
        return;
    told = true;
    outlets.warnOperator(text, "Ombrix.ini Problem");
}

// Takes one line off the front: up to LF or CR. Between the two of a CR LF stands one more line, an empty one.
std::string_view TakeLine(std::string_view &text)
{
    const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

bool IsSectionLine(std::string_view line)
{
    return line.front() == '[' && line.back() == ']';
}

void ReadLine(std::string_view line, std::string &section)
{
    if (line.size() < 3)
        return;
    if (IsSectionLine(line)) {
        section = Trim(line.substr(1, line.size() - 2));
        return;
    }
    const std::size_t equals = line.find('=');
    if (section.empty() || equals == std::string_view::npos)
        return;
    IniSet(section, Trim(line.substr(0, equals)), Trim(line.substr(equals + 1)));
}

// False for a text of which nothing was understood: a file of another make, or in another encoding.
bool ReadText(std::string_view text)
{
    if (text.starts_with("\xEF\xBB\xBF"))  // some editors put a byte order mark in front
        text.remove_prefix(3);
    const bool blank = Trim(text).empty();
    std::string section;
    while (!text.empty())
        ReadLine(TakeLine(text), section);
    return blank || !sections.empty() || !section.empty();
}

std::string LineOf(const IniPair &pair)
{
    const std::string line = pair.key + "=" + pair.value;
    // A blank in front keeps the line from being read as a section.
    return IsSectionLine(line) ? " " + line : line;
}

std::string FileText()
{
    std::string text;
    for (const Section &section : sections) {
        text += "[" + section.name + "]\n";
        for (std::size_t i = section.first; i < section.first + section.count; ++i)
            text += LineOf(keys[i]) + "\n";
    }
    return text;
}

Section *SectionNamed(const std::string &name)
{
    const int index = FindIniSection(name);
    return index < 0 ? nullptr : &sections[static_cast<std::size_t>(index)];
}

void MoveStartsBehind(std::size_t keyIndex, int by)
{
    for (Section &section : sections)
        if (section.first > keyIndex)
            section.first += static_cast<std::size_t>(by);
}

// A new key at the end of its section; later keys move up.
void AddToSection(Section &section, const IniPair &pair)
{
    const std::size_t at = section.first + section.count;
    keys.insert(keys.begin() + static_cast<std::ptrdiff_t>(at), pair);
    MoveStartsBehind(section.first, 1);
    ++section.count;
}

bool AddWithSection(const std::string &name, const IniPair &pair)
{
    keys.push_back(pair);
    if (sections.size() >= kIniSections) {
        // The key takes its place in the table and belongs to nobody.
        Tell(toldSections, "Too many INI Sections");
        return false;
    }
    sections.push_back({name, keys.size() - 1, 1});
    return true;
}

bool AddPair(const std::string &section, const IniPair &pair)
{
    if (keys.size() >= kIniKeys) {
        Tell(toldKeys, "Too many INI Keys");
        return false;
    }
    if (Section *owner = SectionNamed(section))
        AddToSection(*owner, pair);
    else if (!AddWithSection(section, pair))
        return false;
    IniDirty = true;
    return true;
}

// Takes `count` keys from `at` out of a section, and the section with its last one.
void RemoveKeys(Section &section, std::size_t at, std::size_t count)
{
    const auto begin = keys.begin() + static_cast<std::ptrdiff_t>(at);
    keys.erase(begin, begin + static_cast<std::ptrdiff_t>(count));
    MoveStartsBehind(section.first, -static_cast<int>(count));
    section.count -= count;
    if (section.count == 0)
        sections.erase(sections.begin() + (&section - sections.data()));
    IniDirty = true;
}

bool IsOneLine(const std::string &text)
{
    return !text.empty() && text.find_first_of("\r\n") == std::string::npos;
}

// The next save takes the place of a file that holds no settings: what it was stays beside it.
bool KeptBeside(const std::string &path, const std::string &bytes)
{
    if (!WriteFile(path + ".old", bytes).empty())
        return false;
    loss = path + " held no settings. It is kept as " + path + ".old.";
    return true;
}

std::string InBrackets(const std::string &text)
{
    return text.empty() ? "" : " (" + text + ")";
}

// What a line of the file can hold and give back.
bool CanBeKept(const std::string &section, const IniPair &pair)
{
    return IsOneLine(section) && IsOneLine(pair.key) && IsOneLine(pair.value) && !Holds(pair.key, "=");
}

}  // namespace

void LoadIni(const std::string &path)
{
    sections.clear();
    keys.clear();
    toldSections = toldKeys = false;
    iniPath = path;
    const std::optional<std::string> bytes = ReadFile(path);
    const bool understood = ReadText(bytes.value_or(""));
    folderIsHeld = folderHold.TakeFolderOf(path);
    obstacle.clear();
    loss.clear();
    if (!bytes && StateOfFile(path) != FileState::Missing)
        obstacle = path + " can't be read.";
    else if (!folderIsHeld)
        obstacle = path + " is in use by another station" + InBrackets(folderHold.Holder()) + ".";
    else if (!understood && !KeptBeside(path, *bytes))
        obstacle = path + " holds no settings, and " + path + ".old can't be written.";
    KeepRemarkOn(Subject::Settings, obstacle.empty() ? loss : obstacle + kNothingKept);
    IniDirty = false;
}

void SaveIni()
{
    if (!IniDirty || !IniReady || !obstacle.empty())
        return;
    const std::string error = WriteFile(iniPath, FileText());
    IniDirty = !error.empty();
    KeepRemarkOn(Subject::Settings,
                 IniDirty ? iniPath + " can't be written: " + error + ". The settings aren't saved." : loss);
}

void ReleaseIni()
{
    folderHold.Release();
    folderIsHeld = false;
    obstacle = "released";
}

bool IniFolderIsHeld()
{
    return folderIsHeld;
}

std::string IniObstacle()
{
    return obstacle;
}

std::string IniGet(const std::string &section, const std::string &key)
{
    const int index = FindIniKey(section, key);
    return index < 0 ? "" : keys[static_cast<std::size_t>(index)].value;
}

bool IniSet(const std::string &section, const std::string &key, const std::string &value)
{
    const IniPair pair{Trim(key), Trim(value)};
    if (!CanBeKept(section, pair))
        return false;
    const int index = FindIniKey(section, pair.key);
    if (index < 0)
        return AddPair(section, pair);
    std::string &held = keys[static_cast<std::size_t>(index)].value;
    if (held == pair.value)
        return false;
    held = pair.value;
    IniDirty = true;
    return true;
}

void IniRemove(const std::string &section, const std::string &key)
{
    const int index = FindIniKey(section, key);
    if (index >= 0)
        RemoveKeys(*SectionNamed(section), static_cast<std::size_t>(index), 1);
}

int IniKeyCount(const std::string &section)
{
    const Section *found = SectionNamed(section);
    return found ? static_cast<int>(found->count) : 0;
}

std::string IniKeyAt(const std::string &section, int index)
{
    const Section *found = SectionNamed(section);
    if (!found || index < 0 || static_cast<std::size_t>(index) >= found->count)
        return "";
    return keys[found->first + static_cast<std::size_t>(index)].key;
}

void IniClearSection(const std::string &section)
{
    Section *found = SectionNamed(section);
    if (found)
        RemoveKeys(*found, found->first, found->count);
}

void IniRefill(const std::string &section, const std::vector<IniPair> &pairs)
{
    const auto wanted = [&](const std::string &key) {
        return std::any_of(pairs.begin(), pairs.end(), [&](const IniPair &pair) { return pair.key == key; });
    };
    for (int i = IniKeyCount(section) - 1; i >= 0; --i)
        if (const std::string key = IniKeyAt(section, i); !wanted(key))
            IniRemove(section, key);
    for (const IniPair &pair : pairs)
        IniSet(section, pair.key, pair.value);
}

int FindIniSection(const std::string &section)
{
    for (std::size_t i = 0; i < sections.size(); ++i)
        if (sections[i].name == section)
            return static_cast<int>(i);
    return -1;
}

int FindIniKey(const std::string &section, const std::string &key)
{
    const Section *found = SectionNamed(section);
    if (!found)
        return -1;
    for (std::size_t i = found->first; i < found->first + found->count; ++i)
        if (keys[i].key == key)
            return static_cast<int>(i);
    return -1;
}

}  // namespace ombrix
