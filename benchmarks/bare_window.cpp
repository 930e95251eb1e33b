// The least that a program with a window costs here: what the station's start is compared with.

#include <QApplication>
#include <QWidget>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setStyle("Fusion");
    QWidget window;
    window.resize(800, 600);
    window.show();
    return QApplication::exec();
}
