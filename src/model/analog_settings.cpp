// The analog output's part of the settings: section AnaCal, and the older InitFile behind it.
#include "model/analog_settings.h"

#include "model/analog_words.h"
#include "model/ini_store.h"
#include "model/nvm_map.h"
#include "model/old_files.h"
#include "model/settings.h"
#include "platform/text.h"
#include "session/state.h"

namespace ombrix {
namespace {

constexpr const char *kSection = "AnaCal";
constexpr const char *kInitFile = "InitFile";
constexpr std::size_t kImageDigits = 40;
constexpr std::size_t kShortImageDigits = 16;  ///< of a meter without bipolar and dual words
constexpr const char *kBuiltInImage = "FD700048FA2001E0FD700048FA2001E0FD700048";
constexpr const char *kBuiltInTail = "FD700048FA2001E0FD700048";

bool IsDacType(const std::string &text)
{
    return text == "0" || text == "1" || text == "2" || text == "3";
}

std::string WordOfImage(const std::string &image, int index)
{
    return image.substr(static_cast<std::size_t>(AnalogWordOffset(index) - 1), 4);
}

std::string ImageOfInitFile()
{
    const std::string line = FirstLineOfOldFile(kInitFile);
    if (line.size() >= kImageDigits)
        return Left(line, kImageDigits);
    if (line.size() >= kShortImageDigits)
        return Left(line, kShortImageDigits) + kBuiltInTail;
    return kBuiltInImage;
}

// The type stands behind the image, long or short.
std::string DacTypeOfInitFile()
{
    const std::string line = FirstLineOfOldFile(kInitFile);
    const bool typed = line.size() == kImageDigits + 1 || line.size() == kShortImageDigits + 1;
    const std::string type = typed ? Right(line, 1) : "";
    return IsDacType(type) ? type : "1";
}

}  // namespace

void LoadAnaCalWords()
{
    const std::string image = ImageOfInitFile();
    for (int i = 0; i < kAnalogWords; ++i) {
        std::string word = IniGet(kSection, AnalogWordTitle(i));
        if (!IsWordText(word))
            word = WordOfImage(image, i);
        if (!IsWordText(word))
            word = WordOfImage(kBuiltInImage, i);
        StoredAnalogWords[static_cast<std::size_t>(i)] = word;
    }
}

void LoadAnaCal()
{
    CurrentOffsetPoint = IniGet(kSection, "COffCalibPt");
    if (CurrentOffsetPoint != "200" && CurrentOffsetPoint != "4000")
        CurrentOffsetPoint = "200";
    DacTypeText = IniGet(kSection, "DACType");
    if (!IsDacType(DacTypeText))
        DacTypeText = DacTypeOfInitFile();
    SaveAnaCal();
}

void SaveAnaCal()
{
    IniSet(kSection, "COffCalibPt", CurrentOffsetPoint);
    IniSet(kSection, "DACType", DacTypeText);
    for (int i = 0; HardwareMode && i < kAnalogWords; ++i)  // no simulated meter teaches what is kept
        IniSet(kSection, AnalogWordTitle(i), StoredAnalogWords[static_cast<std::size_t>(i)]);
    WordsDirty = false;
    SaveIni();
}

std::string StoredAnalogImage()
{
    std::string image(kImageDigits, '0');
    for (int i = 0; i < kAnalogWords; ++i)
        image.replace(static_cast<std::size_t>(AnalogWordOffset(i) - 1), 4,
                      StoredAnalogWords[static_cast<std::size_t>(i)]);
    return image;
}

void StoreAnalogWordsHex(const std::string &image)
{
    if (!IsWordText(image, kImageDigits))
        return;
    for (int i = 0; i < kAnalogWords; ++i)
        StoredAnalogWords[static_cast<std::size_t>(i)] = WordOfImage(image, i);
    SaveCalibValues();
    SaveAnaCal();
}

}  // namespace ombrix
