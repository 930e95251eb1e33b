// Verify in the station's real window, with the bench's instruments behind it.
#pragma once

#include "model/range_tables.h"
#include "model/step_ids.h"
#include "model/verify_file.h"
#include "platform/file_faults.h"
#include "platform/safe_file.h"
#include "support/journal_events.h"
#include "support/page_test.h"

#include <QDir>

#include <cerrno>
#include <string>
#include <unistd.h>
#include <vector>

namespace ombrix::test {

inline constexpr char kTempFile[] = "Vfy$Temp.txt";
inline constexpr const char *kRed = "#ff0000";
inline constexpr const char *kPromptReady =
    "Set jumpers and apply input as shown and click \"Ready\" to start range, or select "
    "a different range";
inline constexpr const char *kPromptOk = "Click \"OK\" when DPM reading has settled";

/// In the folder of the test; "" stays "".
inline std::string Path(const std::string &file)
{
    return file.empty() ? "" : QDir::current().filePath(QString::fromStdString(file)).toStdString();
}
inline std::string RangeButton(int button)
{
    return "cmdVfyRng(" + std::to_string(button) + ")";
}
inline std::string ReadingLabel(int slot)
{
    return "lblVfyRdg(" + std::to_string(slot) + ")";
}
inline std::string ReadingShape(int slot)
{
    return "shpVfyRdg(" + std::to_string(slot) + ")";
}
/// A record of a file, its six characters.
inline std::string RecordOf(int record, const std::string &file = kTempFile)
{
    const std::string bytes = ReadFile(file).value_or("");
    return bytes.size() < VerifyPlaceOf(record) + 6 ? "none" : bytes.substr(VerifyPlaceOf(record), 6);
}

class WiredVerify : public WiredPage
{
protected:
    void TearDown() override
    {
        UseFileFaults(nullptr);
        WiredPage::TearDown();
    }

    /// A meter of a board, established, the page in front.
    void Opens(int board, bool outputSwitch = false)
    {
        bench::BenchSetup setup;
        setup.board = board;
        setup.outputSwitch = outputSwitch;
        Stands(setup);
        if (outputSwitch)
            person->Clicks("optSwYes");
        Establishes();
        person->Clicks(ButtonOf(Step::Verify)).WaitsFor("chkTempFile");
        Runs();
    }

    ScriptedOperator &UsesTheTemporaryFile() { return person->Clicks("chkTempFile").WaitsFor("cmdVfyReady"); }
    ScriptedOperator &Chooses(const std::string &file)
    {
        return person->Clicks("cmdFileSpec").ChoosesFile(Path(file)).WaitsFor("cmdFileSpec");
    }
    /// Applies the range in front.
    ScriptedOperator &GetsReady() { return person->Clicks("cmdVfyReady").WaitsFor("cmdVfyOK"); }
    void Runs() { ASSERT_TRUE(person->Runs()) << person->Trouble(); }

    /// The display from now on.
    void Shows(const std::string &text) { bench->ShowNext({text}); }

    static void WritesFile(const std::string &name, const std::string &bytes) { ASSERT_EQ(WriteFile(name, bytes), ""); }
};

class VerifyPage : public WiredVerify
{
protected:
    void SetUp() override { Opens(kDc); }

    // A full DC file but for these records.
    static std::string FileWithout(const std::vector<int> &records)
    {
        std::string file = EmptyVerifyFile();
        for (int record = 1; record <= 27; ++record)
            file.replace(VerifyPlaceOf(record), 6, VerifyRecordText(std::to_string(1000 + record)));
        for (const int record : records)
            file.replace(VerifyPlaceOf(record), 6, "      ");
        return file;
    }

    static void OneCallFails(int failing)
    {
        UseFileFaults([failing, calls = 0](FileCall) mutable { return FileFault{calls++ == failing ? EIO : 0, 0}; });
    }

    // Root may do all.
    static void BecomeUser()
    {
        if (getuid() == 0) {
            ASSERT_EQ(seteuid(65534), 0);
        }
    }
};

}  // namespace ombrix::test
