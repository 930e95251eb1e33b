// The least that a window costs here, with a word in it or, as "bare-window empty", without: what the station's start
// is compared with. The first word of a program brings the fonts with it.

#include <QApplication>
#include <QLabel>
#include <QWidget>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setStyle("Fusion");
    QWidget window;
    window.resize(800, 600);
    if (QApplication::arguments().value(1) != "empty")
        new QLabel("Ready", &window);
    window.show();
    return QApplication::exec();
}
