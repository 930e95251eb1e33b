#include "fuzz/support/folder.h"

#include "fuzz/support/case.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace ombrix::fuzz {
namespace {

namespace fs = std::filesystem;

class Folder
{
public:
    Folder()
    {
        std::string name = (fs::exists("/dev/shm") ? "/dev/shm" : fs::temp_directory_path().string()) + "/fuzz.XXXXXX";
        Require(mkdtemp(name.data()) != nullptr, "there is a folder for the case");
        path = name;
    }
    ~Folder()
    {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;

    std::string path;
};

}  // namespace

const std::string &OwnFolder()
{
    static const Folder folder;
    return folder.path;
}

std::string WriteFileOfCase(const std::string &name, std::string_view bytes)
{
    std::string path = OwnFolder() + "/" + name;
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const auto written = write(file, bytes.data(), bytes.size());
    close(file);
    Require(written == static_cast<ssize_t>(bytes.size()), "the case stands in its file");
    return path;
}

void EmptyOwnFolder()
{
    for (const auto &entry : fs::directory_iterator(OwnFolder()))
        fs::remove_all(entry.path());
}

}  // namespace ombrix::fuzz
