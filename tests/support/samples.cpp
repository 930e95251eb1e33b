#include "support/samples.h"

#include "platform/safe_file.h"
#include "platform/text.h"

#include <filesystem>

namespace ombrix::test {

void PutSamples()
{
    for (const auto &entry : std::filesystem::directory_iterator(SAMPLE_FOLDER))
        std::filesystem::copy_file(entry.path(), entry.path().filename());
}

std::string Sample(const std::string &name)
{
    return Trim(ReadFile(std::string(SAMPLE_FOLDER) + "/" + name).value_or(""));
}

}  // namespace ombrix::test
