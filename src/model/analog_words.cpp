#include "model/analog_words.h"

namespace ombrix {

std::array<std::string, kAnalogWords> StoredAnalogWords;
bool WordsDirty = false;
std::string DacTypeText = "1";
std::string CurrentOffsetPoint = "200";

namespace {

struct AnalogWord {
    const char *name;
    const char *title;
    int offset;
};

constexpr AnalogWord kWords[kAnalogWords] = {
    {"VO", "VOffset", 13},      {"VG", "VGain", 9},        {"CO", "COffset", 5},      {"CG", "CGain", 1},
    {"BPM", "BP_Minus10V", 21}, {"BPP", "BP_Plus10V", 17}, {"DVO", "DD_VOffset", 37}, {"DVG", "DD_VGain", 33},
    {"DCO", "DD_COffset", 29},  {"DCG", "DD_CGain", 25},
};

const AnalogWord *WordAt(int index)
{
    return index >= 0 && index < kAnalogWords ? &kWords[index] : nullptr;
}

}  // namespace

std::string AnalogWordName(int index)
{
    return WordAt(index) ? WordAt(index)->name : "";
}

std::string AnalogWordTitle(int index)
{
    return WordAt(index) ? WordAt(index)->title : "";
}

int AnalogWordOffset(int index)
{
    return WordAt(index) ? WordAt(index)->offset : 0;
}

int AnalogWordIndex(const std::string &shortName)
{
    for (int i = 0; i < kAnalogWords; ++i)
        if (shortName == kWords[i].name)
            return i;
    return -1;
}

}  // namespace ombrix
