#include "model/kept_config.h"

#include "model/nvm_map.h"
#include "platform/safe_file.h"
#include "platform/text.h"
#include "session/journal.h"
#include "session/state.h"

#include <QDateTime>
#include <QFile>

#include <vector>

namespace ombrix {
namespace {

constexpr char kFile[] = "KeptConfig.txt";
constexpr char kOldFile[] = "KeptConfig.txt.old";
constexpr std::size_t kLines = 4;  // image, meter, time, and an end that says that it is whole
constexpr char kEnd[] = "end";

KeptConfigOrigin origin;

std::string Now()
{
    return QDateTime::currentDateTimeUtc().toString("yyyy-MM-dd HH:mm").toStdString() + " UTC";
}

}  // namespace

const KeptConfigOrigin &OriginOfKeptConfig()
{
    return origin;
}

void LoadKeptConfig()
{
    origin = {};
    const std::vector<std::string> lines = Split(ReadFile(kFile).value_or(""), '\n');
    if (lines.size() < kLines || lines[3] != kEnd || !IsWordText(lines[0], kConfigDigits))
        return;
    RestConfigImage = lines[0];
    origin = {lines[1], lines[2], ""};
}

std::string KeepConfig(const std::string &image, const std::string &meter, bool lasting)
{
    RestConfigImage = image;
    origin = {meter, Now(), CurrentVisit()};
    if (!lasting)
        return "";
    const auto old = ReadFile(kFile);
    if (old && !old->starts_with(image))
        WriteFile(kOldFile, *old);
    return WriteFile(kFile, image + "\n" + meter + "\n" + origin.utc + "\n" + kEnd + "\n");
}

void ForgetKeptConfig()
{
    const std::vector<std::string> lines = Split(ReadFile(kFile).value_or(""), '\n');
    if (lines.front() == RestConfigImage)
        QFile::remove(kFile);
}

}  // namespace ombrix
