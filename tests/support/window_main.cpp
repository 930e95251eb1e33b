// The main of the tests of the window: a toolkit without a screen, the style of the program, an empty current folder.

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setStyle("Fusion");
    testing::InitGoogleTest(&argc, argv);
    const QTemporaryDir folder;
    QDir::setCurrent(folder.path());
    const int result = RUN_ALL_TESTS();
    QDir::setCurrent("/");
    return result;
}
