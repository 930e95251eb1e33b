// A station folder for one test: empty at first, with the session and the settings at their start values, and an ear
// for what the operator is told.
#pragma once

#include <gtest/gtest.h>

#include <QDir>

#include <fstream>
#include <string>
#include <vector>

#include "model/analog_words.h"
#include "model/ini_store.h"
#include "model/nominals.h"
#include "model/range_tables.h"
#include "model/settings.h"
#include "model/station_settings.h"
#include "platform/safe_file.h"
#include "session/outlets.h"
#include "session/state.h"
#include "support/fresh_settings.h"

namespace ombrix {

class SettingsFolder : public testing::Test
{
protected:
    void SetUp() override
    {
        Empty();
        InitSessionState();
        test::ForgetSettings();
        outlets = Outlets();
        outlets.warnOperator = [this](const std::string &text, const std::string &title) {
            warnings.push_back(title + ": " + text);
        };
        outlets.keepRemark = [this](const std::string &text) {
            kept = text;
            if (!text.empty())
                remarks.push_back(text);
        };
    }

    void TearDown() override
    {
        outlets = Outlets();
        Empty();
        test::ForgetSettings();
    }

    static void Write(const std::string &path, const std::string &bytes)
    {
        std::ofstream(path, std::ios::binary) << bytes;
        ASSERT_EQ(Read(path).size(), bytes.size());
    }
    static std::string Read(const std::string &path) { return ReadFile(path).value_or("(none)"); }
    static bool Exists(const std::string &path) { return StateOfFile(path) != FileState::Missing; }

    /// A fresh program: nothing in memory, then what the folder gives.
    static void Start()
    {
        test::ForgetSettings();
        InitTables();
    }

    std::vector<std::string> warnings;
    std::vector<std::string> remarks;
    std::string kept;  ///< the remark that stands

private:
    static void Empty()
    {
        for (const QFileInfo &entry : QDir().entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
            if (entry.isDir())
                QDir(entry.filePath()).removeRecursively();
            else
                QFile::remove(entry.filePath());
        }
    }
};

}  // namespace ombrix
