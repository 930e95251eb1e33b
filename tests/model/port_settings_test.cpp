// Section Ports.

#include "model/settings.h"

#include "model/settings_folder.h"

using namespace ombrix;

namespace {

class PortSettings : public SettingsFolder
{
};

}  // namespace

TEST_F(PortSettings, NameTheDevices)
{
    Write("Ombrix.ini", "[Ports]\nCOM2=/dev/serial/by-id/usb-Calibrator=1\n");
    Start();
    EXPECT_EQ(PortDevice(1), "/dev/ttyS0");
    EXPECT_EQ(PortDevice(2), "/dev/serial/by-id/usb-Calibrator=1");
    EXPECT_EQ(PortDevice(0), "");
    EXPECT_EQ(PortDevice(3), "");
    EXPECT_EQ(IniGet("Ports", "COM1"), "/dev/ttyS0");
}

TEST_F(PortSettings, AreTheUsualOnesWhereTheFileHasNoRoomForThem)
{
    std::string text;
    for (int i = 0; i < kIniSections; ++i)
        text += "[Plant" + std::to_string(i) + "]\nA=1\n";
    Write("Ombrix.ini", text);
    Start();
    EXPECT_EQ(PortDevice(1), "/dev/ttyS0");
    EXPECT_EQ(PortDevice(2), "/dev/ttyS1");
    EXPECT_EQ(Read("Ombrix.ini"), text);
}
