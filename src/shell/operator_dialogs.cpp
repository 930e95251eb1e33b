#include "shell/operator_dialogs.h"

#include "platform/folders.h"
#include "shell/main_window.h"
#include "shell/operator_boxes.h"
#include "shell/print_dialog.h"
#include "shell/printed_page.h"
#include "widgets/widgets.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QMainWindow>
#include <QPainter>
#include <QPrinter>
#include <QUrl>

namespace ombrix {
namespace {

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
    if (!SampleFolder().empty())
        dialog.setSidebarUrls(dialog.sidebarUrls() << QUrl::fromLocalFile(QString::fromStdString(SampleFolder())));
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
    const auto target = AskPrintTarget(title);
    if (!target)
        return "";
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(Caption(title));
    if (target->printer.empty())
        printer.setOutputFileName(Caption(target->file));
    else
        printer.setPrinterName(Caption(target->printer));
    QPainter painter;
    if (painter.begin(&printer) && PaintLines(painter, lines, points, [&printer] { return printer.newPage(); }) &&
        painter.end() && printer.printerState() != QPrinter::Error)
        return "";
    return "Could not be printed: " + (target->printer.empty() ? target->file : target->printer);
}

void Beep()
{
    QApplication::beep();
}

}  // namespace ombrix
