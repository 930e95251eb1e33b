// Ombrix.ini in memory: sections of keys, in file order, loaded once and written back whole.
#pragma once

#include <string>
#include <vector>

namespace ombrix {

constexpr int kIniSections = 16;
constexpr int kIniKeys = 512;

extern bool IniDirty;  ///< a value changed since the last save
extern bool IniReady;  ///< saves go to the file

/// Forgets all and reads `path`. A missing file leaves the table empty; one that is there and can't be read also makes
/// the store unusable, so that it is never overwritten. So does another station in the same folder: each would write
/// the whole file over what the other has learned. A file with text but no section reads as empty and is copied to
/// `path`.old before anything takes its place; that is said until the next LoadIni.
void LoadIni(const std::string &path = "Ombrix.ini");
/// Writes only when something changed and the store is usable. On a write error it stays dirty and says so.
void SaveIni();
/// Lets the folder go for another program. Nothing is saved any more until the next LoadIni.
void ReleaseIni();
/// Whether this program has the folder of the settings for itself. False when another one may work there.
bool IniFolderIsHeld();
/// Why nothing is saved in this session, whatever changes; "" when the file is usable.
std::string IniObstacle();
/// What follows from an obstacle.
constexpr const char *kNothingKept = " Settings of this session won't be kept.";

std::string IniGet(const std::string &section, const std::string &key);
/// True when the value changed. Adds section and key as needed; both are kept without blanks around them. What a line
/// of the file can't hold (nothing, a line end, "=" in a key) and what finds no room is not stored.
bool IniSet(const std::string &section, const std::string &key, const std::string &value);
void IniRemove(const std::string &section, const std::string &key);
int IniKeyCount(const std::string &section);
std::string IniKeyAt(const std::string &section, int index);
void IniClearSection(const std::string &section);

struct IniPair {
    std::string key;
    std::string value;
};
/// Makes the section hold these pairs and no other. Nothing is dirty when it held them already.
void IniRefill(const std::string &section, const std::vector<IniPair> &pairs);

/// Index, -1 when unknown. Keys are counted through all sections.
int FindIniSection(const std::string &section);
int FindIniKey(const std::string &section, const std::string &key);

}  // namespace ombrix
