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

TEST_F(PortSettings, GoBehindALinkInTheFolder)
{
    Write("Ombrix.ini", "[Ports]\nCOM1=/dev/ttyUSB7\n");
    Start();
    ASSERT_TRUE(QFile::link("/dev/pts/3", "COM2"));
    EXPECT_EQ(PortDevice(1), "/dev/ttyUSB7");
    EXPECT_EQ(PortDevice(2), "/dev/pts/3") << "whether there is anything behind it or not";
    EXPECT_EQ(IniGet("Ports", "COM2"), "/dev/ttyS1") << "the settings stay as they are";
    QFile::remove("COM2");
    EXPECT_EQ(PortDevice(2), "/dev/ttyS1");
    Write("COM1", "no device");
    EXPECT_EQ(PortDevice(1), "/dev/ttyUSB7");
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
