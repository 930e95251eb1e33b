// The chapter on troubleshooting tells every message of the program, each once, and none that the program hasn't.
//
// What a message is follows from where its text stands in src/. Every text of two words or more that a person reads is
// one, but what
// - is an argument of a call that names something or keeps a record (kNotShown),
// - stands in braces that hold values without a `true` among them: a prompt that isn't red, heads, captions, fields,
// - is the text of --help,
// - stands in a file that says nothing to the operator in the middle of his work (kOtherFiles),
// - is listed below (kNoTrouble).
// So a new message fails this test until the chapter has it, wherever it is shown.

#include "guide/source_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace ombrix::test {
namespace {

const std::filesystem::path kProject = PROJECT_FOLDER;

// Calls that name widgets, files and steps, tell the journal, or end the start of a program that is put together wrongly.
const std::set<std::string> kNotShown = {
    "AddGroup",       "AddPortOption",
    "Button",         "Check",
    "Group",          "Label",
    "addOption",      "chooseFile",
    "font",           "logic_error",
    "nameFile",       "NameFile",
    "setToolTip",     "quantity",
    "strncpy",        "setApplicationDescription",
    "toString",       "setPlaceholderText",
    "setWindowTitle",
};

const std::map<std::string, std::string> kOtherFiles = {
    {"calibration/analog_journal.cpp", "words of the journal"},
    {"calibration/analog_journal.h", "words of the journal"},
    {"calibration/step_journal.cpp", "words of the journal"},
    {"calibration/step_journal.h", "words of the journal"},
    {"links/calibrator_simulator.cpp", "what the simulated calibrator answers"},
    {"links/wire_meaning.cpp", "what lines mean, in the window of F12"},
    {"model/verify_file.cpp", "the printed table"},
    {"platform/crash_note.cpp", "the note that a crash leaves in a file"},
    {"records/dual_converter.cpp", "words in a drawing"},
    {"session/page_frame.cpp", "ends the start of a program that is put together wrongly"},
    {"shell/step_marks.cpp", "the summary"},
};

// Shown, but nothing to look up, or parts of what is: each with the source that shows it.
struct Exception {
    std::string file;
    std::string text;
    std::string reason;
};
const std::vector<Exception> kNoTrouble = {
    {"calibration/analog_output.cpp", "26 to 24, 36, 17 to 15, 144", "names of words"},
    {"calibration/analog_points.cpp", "Enter AnaOut Reading in", "what a field is for"},
    {"calibration/analog_points.cpp", "Desired AnaOut Reading =", "what a field is for"},
    {"links/calibrator.cpp", "Apply Input Signal", "title of a box"},
    {"links/calibrator.cpp", "Remove Input", "title of a box"},
    {"model/ini_store.cpp", "Ombrix.ini Problem", "title of a box"},
    {"procedures/analog_meter.cpp", "Analog Output", "title of a box"},
    {"procedures/analog_page.cpp", "Init NVMEM", "name of a step"},
    {"procedures/analog_view.cpp", "Meter's DAC", "head of a group"},
    {"procedures/analog_view.cpp", "Current Offset at", "head of a group"},
    {"procedures/analog_work.cpp", "go on with \"Up\", or type another one", "what comes next"},
    {"procedures/analog_work.cpp", "all points are inside, click \"Accept\"", "what comes next"},
    {"procedures/analog_work.cpp", "not inside yet:", "what comes next"},
    {"procedures/analog_work.cpp", "The meter holds word", "what comes next"},
    {"procedures/analog_work.cpp", "Analog Output", "title of the page"},
    {"procedures/first_cycle_page.cpp", "not taken", "word of the journal"},
    {"procedures/init_page.cpp", "the meter holds the image", "good news"},
    {"procedures/init_page.cpp", "Factory image of the", "what a list is for"},
    {"procedures/trims_page.cpp", "2 V 10 KHz Reading", "what a number is"},
    {"procedures/trims_page.cpp", "-200 mV Reading", "what a number is"},
    {"procedures/trims_page.cpp", "Set jumpers and apply input as shown, then click \"Start\"", "what to do first"},
    {"procedures/vf_page.cpp", "out of range", "word of the journal"},
    {"procedures/vf_page.cpp", "readings reversed", "word of the journal"},
    {"procedures/vf_page.cpp", "outside limits", "word of the journal"},
    {"procedures/vf_service_pages.cpp", "Gain and Offset Retained", "good news"},
    {"procedures/vf_service_pages.cpp", "The original onfiguration above has been saved.", "good news"},
    {"procedures/vf_service_pages.cpp", "no answer", "word of the journal"},
    {"procedures/vf_service_pages.cpp", "Click \"Save\" to restore the original onfiguration above.",
     "what to do first"},
    {"procedures/zero_adjust_page.cpp", "Set jumpers and apply input as shown, then click \"Start\"",
     "what to do first"},
    {"procedures/zero_adjust_page.cpp", "no reading", "word of the journal"},
    {"records/diagrams.cpp", "no jumper", "words in a drawing"},
    {"records/diagrams.cpp", "On the board", "words in a drawing"},
    {"records/raw_words_page.cpp", "Words by number", "title of the page"},
    {"records/send_file_page.cpp", "Extended Meter", "title of a box"},
    {"records/send_file_page.cpp", "Send File", "title of the page"},
    {"shell/establish.cpp", "Calibrator on", "good news"},
    {"shell/establish.cpp", "Communications established --", "good news"},
    {"shell/operator_boxes.cpp", "Esc: not done", "what a key does"},
    {"shell/operator_boxes.cpp", "<p style=\"font-size:%1pt; font-weight:bold; white-space:nowrap\">%2</p><p>%3</p>",
     "how a box looks"},
    {"shell/operator_guide.cpp", "Operator's Guide", "title of a box"},
    {"shell/print_dialog.cpp", "PDF file", "a choice"},
    {"shell/trace_window.cpp", "Save trace", "title of a box"},
};

const std::vector<Literal> &ProgramTexts()
{
    static const std::vector<Literal> all = LiteralsBelow(kProject / "src");
    return all;
}

bool IsException(const Literal &literal)
{
    return std::any_of(kNoTrouble.begin(), kNoTrouble.end(), [&literal](const Exception &exception) {
        return exception.file == literal.file && exception.text == Plain(literal.text);
    });
}

bool IsMessage(const Literal &literal)
{
    const auto &calls = literal.calls;
    const bool shown = std::none_of(calls.begin(), calls.end(), [](const std::string &name) {
        return name.starts_with("Record") || kNotShown.contains(name);
    });
    const bool help = literal.text.starts_with("Usage: ");
    return IsProse(literal.text) && shown && !help && (!literal.data || literal.red) &&
           !kOtherFiles.contains(literal.file);
}

std::vector<std::string> MessagesOfTheChapter()
{
    std::vector<std::string> messages;
    for (const auto &row : RowsOfTables(TextOf(kProject / "docs/troubleshooting.md"))) {
        std::string cell = row[0];
        for (std::size_t at = cell.find("<br>"); at != std::string::npos; at = cell.find("<br>")) {
            messages.push_back(Plain(cell.substr(0, at)));
            cell.erase(0, at + 4);
        }
        messages.push_back(Plain(cell));
    }
    return messages;
}

}  // namespace

TEST(Troubleshooting, TellsEveryMessageOfTheProgram)
{
    std::vector<std::string> told;
    for (const std::string &message : MessagesOfTheChapter())
        for (const std::string &part : FixedParts(message))
            told.push_back(part);
    int messages = 0;
    for (const Literal &literal : ProgramTexts()) {
        if (!IsMessage(literal) || IsException(literal))
            continue;
        ++messages;
        for (const std::string &part : FixedParts(literal.text))
            EXPECT_TRUE(!IsProse(part) ||
                        std::any_of(told.begin(), told.end(),
                                    [&part](const std::string &text) { return text.find(part) != std::string::npos; }))
                << "src/" << literal.file << ":" << literal.line << " shows \"" << part
                << "\", which docs/troubleshooting.md doesn't tell";
    }
    EXPECT_GT(messages, 100);
}

TEST(Troubleshooting, TellsNoMessageThatTheProgramHasNot)
{
    std::map<std::string, std::vector<std::string>> texts;  // by file
    for (const Literal &literal : ProgramTexts())
        for (const std::string &part : FixedParts(literal.text))
            texts[literal.file].push_back(part);
    for (const std::string &message : MessagesOfTheChapter())
        for (const std::string &part : FixedParts(message))
            EXPECT_TRUE(std::any_of(texts.begin(), texts.end(),
                                    [&part](const auto &file) { return IsMadeOf(part, file.second); }))
                << "docs/troubleshooting.md tells \"" << message << "\", and no source has \"" << part << '"';
}

TEST(Troubleshooting, TellsEachMessageOnce)
{
    std::set<std::string> told;
    for (const std::string &message : MessagesOfTheChapter())
        EXPECT_TRUE(told.insert(message).second) << message;
}

TEST(Troubleshooting, MakesExceptionsOfNothingThatIsGone)
{
    for (const Exception &exception : kNoTrouble)
        EXPECT_TRUE(std::any_of(ProgramTexts().begin(), ProgramTexts().end(),
                                [&exception](const Literal &literal) {
                                    return literal.file == exception.file && Plain(literal.text) == exception.text &&
                                           IsMessage(literal);
                                }))
            << exception.file << ": " << exception.text;
    for (const auto &[file, reason] : kOtherFiles)
        EXPECT_TRUE(std::filesystem::exists(kProject / "src" / file)) << file;
}

}  // namespace ombrix::test
