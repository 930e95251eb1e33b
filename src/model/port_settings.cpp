// Section Ports: the devices behind COM1 and COM2.
#include "model/settings.h"

#include <array>

#include "model/ini_store.h"

namespace ombrix {
namespace {

#ifdef _WIN32
constexpr const char *kFirstPort = "COM1";
constexpr const char *kSecondPort = "COM2";
#else
constexpr const char *kFirstPort = "/dev/ttyS0";
constexpr const char *kSecondPort = "/dev/ttyS1";
#endif

std::array<std::string, 2> portDevices;

std::string PortSetting(const std::string &key, const std::string &fallback)
{
    std::string device = IniGet("Ports", key);
    if (!device.empty())
        return device;
    IniSet("Ports", key, fallback);
    return fallback;
}

}  // namespace

void LoadPorts()
{
    portDevices = {PortSetting("COM1", kFirstPort), PortSetting("COM2", kSecondPort)};
}

std::string PortDevice(int port)
{
    return port == 1 || port == 2 ? portDevices[static_cast<std::size_t>(port - 1)] : "";
}

}  // namespace ombrix
