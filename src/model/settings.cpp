#include "model/settings.h"

#include <array>
#include <charconv>
#include <span>

#include "model/analog_words.h"
#include "model/ini_store.h"
#include "model/kept_config.h"
#include "model/nominals.h"
#include "model/old_files.h"
#include "model/range_tables.h"
#include "model/station_settings.h"
#include "platform/text.h"
#include "session/state.h"

namespace ombrix {

int DcRatioRange = 0;
float DcRatioReading = 16390;
int StrainRange = 0;
float StrainReading = 16390;
std::string RtdDesiredText;
std::string QDTargetText = "0.0";
std::string VFLow;
std::string VFHigh;
std::array<std::string, 9> SendFileDefaults;

namespace {

constexpr float kDefaultRatioReading = 16390;

// What each family offers, as it is saved. 20 mV goes as "0", since a "20" has always meant the third range.
constexpr const char *kDcRatioTexts[] = {"0.2", "2", "20"};
constexpr const char *kStrainTexts[] = {"0", "50", "100", "250", "500"};

constexpr const char *kBuiltInSendFiles[] = {"zsc1.dpm",    "zsc2_1.dpm",  "zsc3.dpm", "zscTC.dpm", "",
                                             "zsc2_2V.dpm", "zsc2_3W.dpm", "zsc4.dpm", "zscRTD.dpm"};

void SetOrRemove(const std::string &section, const std::string &key, const std::string &value)
{
    if (Trim(value).empty())
        IniRemove(section, key);
    else
        IniSet(section, key, value);
}

// Cal, meter and switch, one character each.
std::string CommText()
{
    const std::string cal = IniGet("Comms", "CALPort");
    const std::string meter = IniGet("Comms", "DPMPort");
    const std::string withSwitch = IniGet("Comms", "Switch");
    if (cal.size() == 1 && meter.size() == 1 && withSwitch.size() == 1)
        return cal + meter + withSwitch;
    const std::string line = FirstLineOfOldFile("Ombrix.sss");
    return line.empty() ? "211" : Left(line, 3);
}

// A text from the settings, else from an older file, else the default.
std::string TextSetting(const std::string &section, const std::string &key, const std::string &oldFile,
                        std::size_t oldField, const std::string &fallback)
{
    std::string text = IniGet(section, key);
    if (text.empty())
        text = FieldOfOldFile(oldFile, oldField);
    return text.empty() ? fallback : text;
}

// Both families' texts count, whichever family the setting is of.
int RatioRangeOfText(const std::string &text, std::size_t options)
{
    const double range = Val(text);
    int index = 0;
    if (range == 2 || range == 50)
        index = 1;
    else if (range == 20 || range == 100)
        index = 2;
    else if (range == 250)
        index = 3;
    else if (range == 500)
        index = 4;
    return static_cast<std::size_t>(index) < options ? index : 0;
}

// Shortest decimal text that reads back as the same value.
std::string DecimalText(float value)
{
    char buffer[64];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
    return std::string(buffer, end.ptr);
}

void LoadRatio(const std::string &family, const std::string &oldFile, std::size_t options, int &range, float &reading)
{
    std::string rangeText = IniGet("Ratio", family + "Range");
    std::string readingText = IniGet("Ratio", family + "Reading");
    if (rangeText.empty() || readingText.empty()) {
        rangeText = FieldOfOldFile(oldFile, 0);
        readingText = FieldOfOldFile(oldFile, 1);
    }
    range = RatioRangeOfText(rangeText, options);
    reading = static_cast<float>(Val(readingText));
    if (!(reading > 0 && reading < 100000))
        reading = kDefaultRatioReading;
}

void SaveRatio(const std::string &family, std::span<const char *const> texts, int range, float reading)
{
    const bool offered = range >= 0 && static_cast<std::size_t>(range) < texts.size();
    IniSet("Ratio", family + "Range", texts[offered ? static_cast<std::size_t>(range) : 0]);
    IniSet("Ratio", family + "Reading", DecimalText(reading));
}

// The stored code of a filter key; the default takes the place of one that isn't 5 characters long.
std::string FilterSetting(const std::string &board, const FilterDefault &filter)
{
    const std::string key = board + "." + filter.key;
    std::string code = IniGet("Filter", key);
    if (code.empty())
        code = IniGet("Filter", filter.key + "." + board);  // as some older files have it
    if (code.size() != filter.code.size())
        code = filter.code;
    IniSet("Filter", key, code);
    return code;
}

void TakeSendFile(const std::string &boardName, const std::string &file)
{
    const int board = BoardIndex(boardName);
    if (board >= kDc && board <= kRtd && board != kVf && !file.empty())
        SendFileDefaults[static_cast<std::size_t>(board)] = file;
}

}  // namespace

void InitTables()
{
    InitNominals();
    ClearFilterCodes();
    IniReady = WordsDirty = false;

    LoadIni();
    LoadCommSettings();
    LoadGains();
    LoadCalibValues();
    LoadRatios();
    LoadISource();
    LoadQDTarget();
    LoadVFLimits();
    LoadFilters();
    LoadSendFileNames();
    LoadPorts();
    LoadKeptConfig();
    // So far the saves only marked what changed; the last loader writes it all.
    IniReady = true;
    LoadAnaCal();
}

void LoadCommSettings()
{
    const std::string text = CommText();
    const std::string ports = Left(text, 2);
    const bool valid =
        ports == "01" || ports == "02" || ports == "10" || ports == "12" || ports == "20" || ports == "21";
    CalPort = valid ? ports[0] - '0' : 2;
    MeterPort = valid ? ports[1] - '0' : 1;
    Automatic = CalPort != 0;
    UseSwitch = text.size() < 3 || text[2] != '0';
    SaveCommSettings();
}

void SaveCommSettings()
{
    IniSet("Comms", "CALPort", std::to_string(CalPort));
    IniSet("Comms", "DPMPort", std::to_string(MeterPort));
    IniSet("Comms", "Switch", UseSwitch ? "1" : "0");
    SaveIni();
}

void LoadRatios()
{
    LoadRatio("DC", "dcratio.fil", std::size(kDcRatioTexts), DcRatioRange, DcRatioReading);
    LoadRatio("LC", "strain.fil", std::size(kStrainTexts), StrainRange, StrainReading);
    SaveRatios();
}

void SaveRatios()
{
    SaveRatio("DC", kDcRatioTexts, DcRatioRange, DcRatioReading);
    SaveRatio("LC", kStrainTexts, StrainRange, StrainReading);
    SaveIni();
}

void LoadISource()
{
    RtdDesiredText = TextSetting("ISource", "ISDesired", "ISource.sss", 0, "");
    SaveISource();
}

void SaveISource()
{
    SetOrRemove("ISource", "ISDesired", RtdDesiredText);
    SaveIni();
}

void LoadQDTarget()
{
    QDTargetText = TextSetting("QuasiDiode", "QDTarget", "QDTarget.sss", 0, "0.0");
    SaveQDTarget();
}

void SaveQDTarget()
{
    SetOrRemove("QuasiDiode", "QDTarget", QDTargetText);
    SaveIni();
}

void LoadVFLimits()
{
    VFHigh = TextSetting("VFLimits", "VFHigh", "VFLimits.sss", 0, "");
    VFLow = TextSetting("VFLimits", "VFLow", "VFLimits.sss", 1, "");
    SaveVFLimits();
}

void SaveVFLimits()
{
    SetOrRemove("VFLimits", "VFHigh", VFHigh);
    SetOrRemove("VFLimits", "VFLow", VFLow);
    SaveIni();
}

void LoadFilters()
{
    ClearFilterCodes();
    for (int board = kDc; board <= kRtd; ++board)
        for (int position = 0; position < kPositions; ++position) {
            const FilterDefault filter = DefaultFilterAt(board, position);
            if (!filter.code.empty())
                SetFilterCode(board, position, FilterSetting(BoardName(board), filter));
        }
}

void LoadSendFileNames()
{
    for (std::size_t board = 0; board < SendFileDefaults.size(); ++board)
        SendFileDefaults[board] = kBuiltInSendFiles[board];
    if (IniKeyCount("SFNames") > 0) {
        for (int i = 0; i < IniKeyCount("SFNames"); ++i) {
            const std::string board = IniKeyAt("SFNames", i);
            TakeSendFile(board, IniGet("SFNames", board));
        }
        return;
    }
    const std::vector<std::string> fields = FieldsOfOldFile("SFNames.sss");
    for (std::size_t i = 0; i + 1 < fields.size(); i += 2)
        TakeSendFile(fields[i], fields[i + 1]);
    SaveSendFileNames();
}

void SaveSendFileNames()
{
    std::vector<IniPair> pairs;
    for (std::size_t board = 0; board < SendFileDefaults.size(); ++board)
        if (!SendFileDefaults[board].empty())
            pairs.push_back({BoardName(static_cast<int>(board)), SendFileDefaults[board]});
    IniRefill("SFNames", pairs);
    SaveIni();
}

}  // namespace ombrix
