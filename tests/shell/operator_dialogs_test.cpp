#include "shell/operator_dialogs.h"

#include "platform/folders.h"
#include "platform/safe_file.h"
#include "session/outlets.h"
#include "session/state.h"
#include "shell/operator_boxes.h"
#include "shell/station.h"
#include "support/station.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QPrinterInfo>
#include <QRegularExpression>
#include <QUrl>

namespace ombrix::test {
namespace {

class OperatorDialogs : public testing::Test
{
protected:
    OperatorDialogs()
    {
        QDir().mkdir("images");
        WriteFile("images/one.dpm", "1");
        WriteFile("images/two.dpm", "2");
    }

    static std::string Path(const char *name) { return QDir::current().filePath(name).toStdString(); }

    /// Opens the file dialog; what the script says next runs while it waits.
    ScriptedOperator &Opens(const std::string &start)
    {
        return person.Does([this, start] { path = outlets.chooseFile("Open", "Meter files (*.dpm)", start); });
    }

    static QByteArray Written(const char *name)
    {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// The size of the letters in a printed file, in points.
    static double Points(const char *name)
    {
        const QByteArray pdf = Written(name);
        for (qsizetype at = pdf.indexOf("\nstream\n"); at >= 0; at = pdf.indexOf("\nstream\n", at + 1)) {
            const QByteArray length("\0\1\0\0", 4);  // a guess is enough for the reader
            const QString page = QString::fromLatin1(qUncompress(length + pdf.mid(at + 8)));
            static const QRegularExpression scale("([\\d.]+) 0 0 -[\\d.]+ [\\d.]+ [\\d.]+ cm");
            static const QRegularExpression letters("/F\\d+ ([\\d.]+) Tf");
            if (letters.match(page).hasMatch())
                return scale.match(page).captured(1).toDouble() * letters.match(page).captured(1).toDouble();
        }
        return 0;
    }

    Station station;
    ScriptedOperator &person = station.person;
    std::string path = "?";
};

TEST_F(OperatorDialogs, AFileIsChosenByItsPath)
{
    Opens("images").ChoosesFile(Path("images/two.dpm"));
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(path, Path("images/two.dpm"));
}

TEST_F(OperatorDialogs, TheFileDialogBeginsAtTheFileBefore)
{
    Opens(Path("images/one.dpm"))
        .WaitsUntil("it is up", [] { return ScriptedOperator::Sees("dlgOpen"); })
        .Does([] {
            auto *dialog = qobject_cast<QFileDialog *>(ScriptedOperator::Find("dlgOpen"));
            EXPECT_EQ(dialog->directory().dirName(), "images");
            EXPECT_EQ(dialog->findChild<QLineEdit *>("fileNameEdit")->text(), "one.dpm");
            EXPECT_EQ(dialog->nameFilters(), QStringList("Meter files (*.dpm)"));
            EXPECT_EQ(dialog->windowTitle(), "Open");
        })
        .ChoosesFile("");
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(path, "");
}

TEST_F(OperatorDialogs, TheFileDialogOffersTheFolderOfTheInstalledSamples)
{
    LookForSamplesIn(Path("images"));
    Opens(".")
        .WaitsUntil("it is up", [] { return ScriptedOperator::Sees("dlgOpen"); })
        .Does([] {
            auto *dialog = qobject_cast<QFileDialog *>(ScriptedOperator::Find("dlgOpen"));
            EXPECT_EQ(dialog->directory().absolutePath(), QDir::currentPath());
            EXPECT_TRUE(dialog->sidebarUrls().contains(QUrl::fromLocalFile(QDir::current().filePath("images"))));
        })
        .ChoosesFile("");
    ASSERT_TRUE(person.Runs());
    LookForSamplesIn("");
}

TEST_F(OperatorDialogs, AFileThatIsNotThereIsToldAndAskedAgain)
{
    std::string told;
    Opens("images")
        .ChoosesFile(Path("images/three.dpm"))
        .WaitsUntil("it is told", [] { return ScriptedOperator::Box() != nullptr; })
        .Does([&] { told = ScriptedOperator::BoxText(); })
        .AnswersBox("OK")
        .ChoosesFile(Path("images/one.dpm"));
    ASSERT_TRUE(person.Runs()) << person.Trouble();
    EXPECT_EQ(told, "There is no such file: " + Path("images/three.dpm"));
    EXPECT_EQ(path, Path("images/one.dpm"));
}

TEST_F(OperatorDialogs, TheEndOfTheProgramChoosesNoFile)
{
    Opens(Path("images/one.dpm"))
        .WaitsUntil("it is up", [] { return ScriptedOperator::Sees("dlgOpen"); })
        .Does(CloseBoxes);
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(path, "");
}

TEST_F(OperatorDialogs, QuitTakesTheFileDialogAway)
{
    Opens("images").WaitsUntil("it is up", [] { return ScriptedOperator::Sees("dlgOpen"); }).Clicks("cmdQuit");
    ASSERT_TRUE(person.Runs());
    EXPECT_TRUE(Quitting);
    EXPECT_EQ(path, "?") << "whoever asked is unwound";
}

TEST_F(OperatorDialogs, LinesArePrintedToAFileWithoutAPrinter)
{
    std::string trouble = "?";
    person.Does([&] {
              trouble = outlets.print("Verification", {{""}, {"INPUT   200mV", true}, {" +DC   79990"}}, 12);
          })
        .PrintsTo(Path("page.pdf"));
    ASSERT_TRUE(person.Runs()) << person.Trouble();
    EXPECT_EQ(trouble, "");
    const QByteArray pdf = Written("page.pdf");
    EXPECT_TRUE(pdf.startsWith("%PDF"));
    EXPECT_EQ(pdf.count("/Type /Page\n"), 1) << "one page";
    EXPECT_TRUE(pdf.contains("Mono") || pdf.contains("Courier")) << "a fixed pitch";
}

TEST_F(OperatorDialogs, WhatFindsNoRoomOnAPageGoesToTheNext)
{
    std::string trouble = "?";
    const std::vector<PrintedLine> lines(150, {"a line"});
    person.Does([&] { trouble = outlets.print("Long", lines, 12); }).PrintsTo(Path("long.pdf"));
    ASSERT_TRUE(person.Runs()) << person.Trouble();
    EXPECT_EQ(trouble, "");
    EXPECT_EQ(Written("long.pdf").count("/Type /Page\n"), 3);
}

TEST_F(OperatorDialogs, LongLinesShrinkThePageInsteadOfBeingCut)
{
    person.Does([] { outlets.print("Short", {{std::string(78, 'x')}}, 12); }).PrintsTo(Path("short.pdf"));
    person.Does([] { outlets.print("Long", {{std::string(100, 'x')}, {"x"}}, 12); }).PrintsTo(Path("long.pdf"));
    ASSERT_TRUE(person.Runs()) << person.Trouble();
    EXPECT_NEAR(Points("short.pdf"), 12, 0.1);
    EXPECT_GT(Points("long.pdf"), 9);
    EXPECT_LT(Points("long.pdf"), 9.7) << "100 letters, 0.6 of that wide each, on 575 points";
}

TEST_F(OperatorDialogs, AFileThatCannotBeMadeIsToldAndAskedAgain)
{
    std::string trouble = "?";
    std::vector<std::string> told;
    person.Does([&] { trouble = outlets.print("Verification", {{"text"}}, 12); });
    for (const std::string &path : {Path("missing/page.pdf"), Path("images")})
        person.PrintsTo(path)
            .WaitsUntil("it is told", [] { return ScriptedOperator::Box() != nullptr; })
            .Does([&] { told.push_back(ScriptedOperator::BoxText()); })
            .AnswersBox("OK");
    person.PrintsTo(Path("page.pdf"));
    ASSERT_TRUE(person.Runs()) << person.Trouble();
    EXPECT_EQ(told, (std::vector<std::string>{"There is no such folder: " + Path("missing"),
                                              Path("images") + " is a folder."}));
    EXPECT_EQ(trouble, "");
    EXPECT_TRUE(Written("page.pdf").startsWith("%PDF"));
}

TEST_F(OperatorDialogs, AFileThatIsThereIsPrintedOverOnlyWhenTheOperatorSaysSo)
{
    WriteFile("page.pdf", "another's");
    person.Does([] { outlets.print("Verification", {{"text"}}, 12); }).PrintsTo(Path("page.pdf"));
    person.AnswersBox("Cancel").Does([] {
        EXPECT_EQ(Written("page.pdf"), "another's");
        EXPECT_TRUE(ScriptedOperator::Sees("dlgPrint"));
    });
    person.PrintsTo(Path("page.pdf")).AnswersBox("OK");
    ASSERT_TRUE(person.Runs()) << person.Trouble();
    EXPECT_TRUE(Written("page.pdf").startsWith("%PDF"));
}

TEST_F(OperatorDialogs, QuitTakesThePrintDialogAwayAlsoUnderABox)
{
    bool printed = false;
    person.Does([&] {
        outlets.print("Verification", {{"text"}}, 12);
        printed = true;
    });
    person.PrintsTo(Path("images"))
        .WaitsUntil("it is told", [] { return ScriptedOperator::Box() != nullptr; })
        .Clicks("cmdQuit");
    ASSERT_TRUE(person.Runs()) << person.Trouble();
    EXPECT_TRUE(Quitting);
    EXPECT_FALSE(printed) << "whoever asked is unwound";
}

TEST_F(OperatorDialogs, AFileIsOfferedWhereThereIsNoPrinter)
{
    person.Does([] { outlets.print("Verification", {{"text"}}, 12); })
        .WaitsUntil("it is up", [] { return ScriptedOperator::IsEnabled("cmdPrint"); })
        .Does([] {
            if (QPrinterInfo::defaultPrinterName().isEmpty()) {
                EXPECT_EQ(ScriptedOperator::Text("txtPrintFile"),
                          QDir::home().filePath("Verification.pdf").toStdString());
                EXPECT_TRUE(ScriptedOperator::IsEnabled("txtPrintFile"));
            }
        })
        .Clicks("cmdPrintBrowse")
        .ChoosesFile(Path("images/table.pdf"))
        .Does([] { EXPECT_EQ(ScriptedOperator::Text("txtPrintFile"), Path("images/table.pdf")); })
        .Clicks("cmdPrintCancel");
    ASSERT_TRUE(person.Runs()) << person.Trouble();
    EXPECT_FALSE(QFile::exists("images/table.pdf"));
}

TEST_F(OperatorDialogs, APageThatCannotBeBegunIsTold)
{
    std::string trouble = "?";
    person.Does([&] { trouble = outlets.print("Verification", {{"text"}}, 12); });
    person.Does([] { ASSERT_TRUE(QFile::link("/dev/full/nothing.pdf", "gone.pdf")); }).PrintsTo(Path("gone.pdf"));
    ASSERT_TRUE(person.Runs()) << person.Trouble();
    EXPECT_EQ(trouble, "Could not be printed: " + Path("gone.pdf"));
}

TEST_F(OperatorDialogs, ACancelledPrintWritesNothingAndIsNoTrouble)
{
    std::string trouble = "?";
    person.Does([&] { trouble = outlets.print("Verification", {{"text"}}, 12); }).PrintsTo("");
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(trouble, "");
    EXPECT_EQ(QDir::current().entryList({"*.pdf"}).size(), 0);
}

}  // namespace
}  // namespace ombrix::test
