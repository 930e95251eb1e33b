#include "shell/operator_dialogs.h"

#include "shell/main_window.h"
#include "shell/operator_boxes.h"
#include "widgets/widgets.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QMainWindow>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>

#include <algorithm>

namespace ombrix {
namespace {

QFont PrintFont(double points)
{
    QFont font("Courier New");
    font.setStyleHint(QFont::Monospace);
    font.setFixedPitch(true);
    font.setPointSizeF(points);
    return font;
}

double Width(const std::vector<PrintedLine> &lines, const QFont &font, QPaintDevice *device)
{
    const QFontMetricsF metrics(font, device);
    double width = 0;
    for (const PrintedLine &line : lines)
        width = std::max(width, metrics.horizontalAdvance(QString::fromStdString(line.text)));
    return width;
}

// No column is cut: the whole page shrinks instead.
QFont FittingFont(const std::vector<PrintedLine> &lines, int points, QPrinter *printer)
{
    const double width = Width(lines, PrintFont(points), printer);
    const double room = printer->pageLayout().paintRectPixels(printer->resolution()).width();
    return PrintFont(width > room ? points * room / width : points);
}

// False when a new page could not be had.
bool Paint(QPainter &painter, QPrinter &printer, const std::vector<PrintedLine> &lines, QFont font)
{
    const QFontMetricsF metrics(font, &printer);
    double top = 0;
    for (const PrintedLine &line : lines) {
        if (top + metrics.height() > painter.viewport().height()) {
            if (!printer.newPage())
                return false;
            top = 0;
        }
        font.setUnderline(line.underlined);
        painter.setFont(font);
        painter.drawText(QPointF(0, top + metrics.ascent()), QString::fromStdString(line.text));
        top += metrics.lineSpacing();
    }
    return true;
}

void PrepareFileDialog(QFileDialog &dialog, const std::string &filter, const std::string &start)
{
    dialog.setObjectName("dlgOpen");
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setFileMode(QFileDialog::AnyFile);  // a file that isn't there is told by whoever can't use one
    dialog.setNameFilter(QString::fromStdString(filter));
    const QFileInfo begin(QString::fromStdString(start));
    dialog.setDirectory(begin.isDir() ? begin.absoluteFilePath() : begin.absolutePath());
    if (!begin.isDir())
        dialog.selectFile(begin.fileName());
}

}  // namespace

std::string ChooseFile(const std::string &title, const std::string &filter, const std::string &start)
{
    QFileDialog dialog(frmOmbrix, Caption(title));
    PrepareFileDialog(dialog, filter, start);
    while (ShowAndWait(&dialog)) {
        const QString path = dialog.selectedFiles().value(0);
        if (QFileInfo(path).isFile())
            return path.toStdString();
        WarnOperator("There is no such file: " + path.toStdString(), title);
    }
    return "";
}

std::string NameFile(const std::string &title, const std::string &filter, const std::string &start)
{
    QFileDialog dialog(frmOmbrix, Caption(title));
    PrepareFileDialog(dialog, filter, start);
    return ShowAndWait(&dialog) ? dialog.selectedFiles().value(0).toStdString() : "";
}

std::string PrintLines(const std::string &title, const std::vector<PrintedLine> &lines, int points)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(QString::fromStdString(title));
    if (QPrinterInfo::availablePrinterNames().isEmpty())
        printer.setOutputFileName(QDir::home().filePath(QString::fromStdString(title) + ".pdf"));
    QPrintDialog dialog(&printer, frmOmbrix);
    dialog.setObjectName("dlgPrint");
    dialog.setWindowTitle(Caption(title));
    dialog.setOptions(QAbstractPrintDialog::PrintToFile);
    if (!ShowAndWait(&dialog))
        return "";
    const QString where = printer.outputFileName().isEmpty() ? printer.printerName() : printer.outputFileName();
    QPainter painter;
    if (!painter.begin(&printer) || !Paint(painter, printer, lines, FittingFont(lines, points, &printer)) ||
        !painter.end() || printer.printerState() == QPrinter::Error)
        return "Could not be printed: " + where.toStdString();
    return "";
}

void Beep()
{
    QApplication::beep();
}

}  // namespace ombrix
