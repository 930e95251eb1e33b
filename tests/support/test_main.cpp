// The main of the tests without a window: an event loop, an empty current folder.

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    const QTemporaryDir folder;
    QDir::setCurrent(folder.path());
    const int result = RUN_ALL_TESTS();
    QDir::setCurrent("/");
    return result;
}
