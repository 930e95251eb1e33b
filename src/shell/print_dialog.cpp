#include "shell/print_dialog.h"

#include "shell/main_window.h"
#include "shell/operator_boxes.h"
#include "shell/operator_dialogs.h"
#include "widgets/widgets.h"

#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPrinterInfo>
#include <QPushButton>

namespace ombrix {
namespace {

constexpr const char *kToFile = "PDF file";

struct Dialog {
    QDialog window{frmOmbrix};
    QComboBox *printer = nullptr;
    QLineEdit *file = nullptr;
    QPushButton *browse = nullptr;
    std::string title;
};

bool GoesToFile(const Dialog &dialog)
{
    return dialog.printer->currentIndex() == dialog.printer->count() - 1;
}

// What keeps a file from being made, "" when nothing does.
std::string TroubleOf(const QString &path)
{
    const QFileInfo file(path);
    const QFileInfo folder(file.absolutePath());
    if (path.isEmpty())
        return "The file has no name.";
    if (!folder.isDir())
        return "There is no such folder: " + folder.filePath().toStdString();
    if (file.isDir())
        return path.toStdString() + " is a folder.";
    if (!(file.exists() ? file : folder).isWritable())
        return path.toStdString() + " can't be written: permission denied.";
    return "";
}

bool MayPrint(const Dialog &dialog)
{
    if (!GoesToFile(dialog))
        return true;
    const QString path = dialog.file->text();
    const std::string trouble = TroubleOf(path);
    if (!trouble.empty())
        WarnOperator(trouble, dialog.title);
    return trouble.empty() && (!QFileInfo::exists(path) ||
                               AskOperator(path.toStdString() + " is there already.\r\nPrint over it?", dialog.title));
}

void ShowTarget(const Dialog &dialog)
{
    dialog.file->setEnabled(GoesToFile(dialog));
    dialog.browse->setEnabled(GoesToFile(dialog));
}

void BuildTargets(Dialog &dialog)
{
    dialog.printer = new QComboBox(&dialog.window);
    dialog.printer->setObjectName("cboPrinter");
    dialog.printer->addItems(QPrinterInfo::availablePrinterNames());
    dialog.printer->addItem(kToFile);
    dialog.printer->setCurrentText(QPrinterInfo::defaultPrinterName());
    dialog.file = new QLineEdit(QDir::home().filePath(Caption(dialog.title) + ".pdf"), &dialog.window);
    dialog.file->setObjectName("txtPrintFile");
    dialog.file->setMinimumWidth(dialog.file->fontMetrics().averageCharWidth() * 50);
    dialog.browse = Button(&dialog.window, "cmdPrintBrowse", "Browse...", [&dialog] {
        const std::string path = NameFile(dialog.title, "PDF files (*.pdf)", dialog.file->text().toStdString());
        if (!path.empty())
            dialog.file->setText(Caption(path));
    });
    QObject::connect(dialog.printer, &QComboBox::currentIndexChanged, &dialog.window,
                     [&dialog] { ShowTarget(dialog); });
}

void BuildDialog(Dialog &dialog)
{
    dialog.window.setObjectName("dlgPrint");
    dialog.window.setWindowTitle(Caption(dialog.title));
    BuildTargets(dialog);
    QPushButton *print = Button(&dialog.window, "cmdPrint", "Print", [&dialog] {
        if (MayPrint(dialog))
            dialog.window.accept();
    });
    QPushButton *cancel = Button(&dialog.window, "cmdPrintCancel", "Cancel", [&dialog] { dialog.window.reject(); });
    print->setDefault(true);
    auto *grid = new QGridLayout(&dialog.window);
    grid->addWidget(Label(&dialog.window, "lblPrinter", "Printer"), 0, 0);
    grid->addWidget(dialog.printer, 0, 1, 1, 2);
    grid->addWidget(Label(&dialog.window, "lblPrintFile", "File"), 1, 0);
    grid->addWidget(dialog.file, 1, 1);
    grid->addWidget(dialog.browse, 1, 2);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(print);
    buttons->addWidget(cancel);
    grid->addLayout(buttons, 2, 0, 1, 3);
    ShowTarget(dialog);
}

}  // namespace

std::optional<PrintTarget> AskPrintTarget(const std::string &title)
{
    Dialog dialog;
    dialog.title = title;
    BuildDialog(dialog);
    if (!ShowAndWait(&dialog.window))
        return std::nullopt;
    if (GoesToFile(dialog))
        return PrintTarget{"", dialog.file->text().toStdString()};
    return PrintTarget{dialog.printer->currentText().toStdString(), ""};
}

}  // namespace ombrix
