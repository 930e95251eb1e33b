#include "shell/theme.h"

#include "platform/safe_file.h"
#include "shell/shell_fixture.h"

#include <QApplication>

using namespace ombrix;
using namespace ombrix::test;

namespace {

class ThemeOfTheSettings : public ShellTest
{
protected:
    ~ThemeOfTheSettings() override { QApplication::setPalette(QPalette()); }

    static void OpenWith(const std::string &ini)
    {
        CloseStation();
        WriteFile("Ombrix.ini", ini);
        OpenWholeStation();
    }
};

}  // namespace

TEST_F(ThemeOfTheSettings, ThatIsUnknownIsToldWithThoseThatThereAre)
{
    OpenWith("[Look]\nTheme=drak\n");
    EXPECT_EQ(Text("lblKeptRemark"),
              "Ombrix.ini: the Theme \"drak\" is unknown. There are light and dark, and without a Theme "
              "the desktop's colours.");
}

TEST_F(ThemeOfTheSettings, ThatIsKnownOrNotSetNeedsNoRemark)
{
    for (const char *ini : {"[Look]\nTheme=light\n", "[Look]\nTheme=dark\n", ""}) {
        OpenWith(ini);
        EXPECT_EQ(Text("lblKeptRemark"), "") << ini;
    }
}
