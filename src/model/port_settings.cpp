// Section Ports: the devices behind COM1 and COM2.
#include "model/settings.h"

#include <array>
#include <filesystem>
#include <system_error>

#include "model/ini_store.h"

namespace ombrix {
namespace {

std::array<std::string, 2> portDevices;

std::string PortSetting(const std::string &key, const std::string &fallback)
{
    std::string device = IniGet("Ports", key);
    if (!device.empty())
        return device;
    IniSet("Ports", key, fallback);
    return fallback;
}

// What an entry of the current folder leads to, "" when there is none of that name.
std::string DeviceInFolder(const std::filesystem::path &name)
{
    std::error_code failed;
    const std::filesystem::file_status status = std::filesystem::symlink_status(name, failed);
    if (std::filesystem::is_symlink(status))
        return std::filesystem::read_symlink(name, failed).string();
    return std::filesystem::is_character_file(status) ? name.string() : "";
}

}  // namespace

void LoadPorts()
{
    portDevices = {PortSetting("COM1", "/dev/ttyS0"), PortSetting("COM2", "/dev/ttyS1")};
}

std::string PortDevice(int port)
{
    if (port != 1 && port != 2)
        return "";
    const std::string entry = DeviceInFolder("COM" + std::to_string(port));
    return entry.empty() ? portDevices[static_cast<std::size_t>(port - 1)] : entry;
}

}  // namespace ombrix
