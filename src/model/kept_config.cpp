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

// What a file's lines say; all "" when it isn't whole.
KeptConfigOrigin OriginIn(const std::vector<std::string> &lines)
{
    if (lines.size() < kLines || lines[3] != kEnd || !IsWordText(lines[0], kConfigDigits))
        return {};
    return {lines[1], lines[2], ""};
}

}  // namespace

const KeptConfigOrigin &OriginOfKeptConfig()
{
    return origin;
}

void LoadKeptConfig()
{
    const std::vector<std::string> lines = Split(ReadFile(kFile).value_or(""), '\n');
    origin = OriginIn(lines);
    if (!origin.meter.empty())
        RestConfigImage = lines[0];
}

ConfigKept KeepConfig(const std::string &image, const std::string &meter, bool lasting)
{
    RestConfigImage = image;
    origin = {meter, Now(), CurrentVisit()};
    if (!lasting)
        return {};
    ConfigKept kept;
    const auto old = ReadFile(kFile);
    if (old && !old->starts_with(image)) {
        kept.trouble = WriteFile(kOldFile, *old);
        kept.aside = OriginIn(Split(*old, '\n'));
    }
    if (kept.trouble.empty())
        kept.trouble = WriteFile(kFile, image + "\n" + meter + "\n" + origin.utc + "\n" + kEnd + "\n");
    return kept;
}

void ForgetKeptConfig()
{
    const std::vector<std::string> lines = Split(ReadFile(kFile).value_or(""), '\n');
    if (lines.front() == RestConfigImage)
        QFile::remove(kFile);
}

}  // namespace ombrix
