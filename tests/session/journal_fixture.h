// A journal in a folder of its own, and its files read by other means than the journal's.
#pragma once

#include "platform/append_file.h"
#include "platform/safe_file.h"
#include "session/journal.h"
#include "session/journal_reader.h"
#include "session/outlets.h"
#include "support/virtual_clock.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace ombrix::test {

inline std::int64_t Moment(const char *utc)
{
    return QDateTime::fromString(utc, Qt::ISODateWithMs).toMSecsSinceEpoch();
}

// A new file with these bytes, in place of an older one. Some systems sync a file that is cut to nothing and written.
inline void Put(const std::string &path, const std::string &bytes)
{
    QFile::remove(QString::fromStdString(path));
    std::ofstream(path, std::ios::binary) << bytes;
}

class JournalTest : public testing::Test
{
protected:
    JournalTest()
    {
        QDir("station").removeRecursively();
        QDir().mkdir("station");
        UseWallClock([this] { return now; });
        outlets.keepRemark = [this](const std::string &text) { remarks.push_back(text); };
    }

    ~JournalTest() override
    {
        UseFileFaults(nullptr);
        CloseJournal();
        UseWallClock(nullptr);
        UseJournal(true);
        outlets = Outlets();
    }

    static void Open(const RunBefore &before = {}) { OpenJournal("station", "Bench 7", "1.2.3", before); }

    static std::string Path(const std::string &month) { return "station/Journal/" + month + ".jsonl"; }
    static std::string Bytes(const std::string &month) { return ReadFile(Path(month)).value_or("none"); }

    // The complete lines of a month that are JSON, torn ones left out.
    static std::vector<QByteArray> Lines(const std::string &month)
    {
        std::vector<QByteArray> lines;
        for (const QByteArray &line : QByteArray::fromStdString(Bytes(month)).split('\n'))
            if (QJsonDocument::fromJson(line).isObject())
                lines.push_back(line);
        return lines;
    }

    // Of two months, the one behind the other.
    static std::vector<QByteArray> Lines(const std::string &month, const std::string &next)
    {
        std::vector<QByteArray> lines = Lines(month);
        for (const QByteArray &line : Lines(next))
            lines.push_back(line);
        return lines;
    }

    static QJsonObject Json(const QByteArray &line) { return QJsonDocument::fromJson(line).object(); }

    static std::string Kinds(const std::vector<QByteArray> &lines)
    {
        std::string kinds;
        for (const QByteArray &line : lines)
            kinds += Json(line)["kind"].toString().toStdString() + " ";
        return kinds;
    }
    static std::string Kinds(const std::string &month) { return Kinds(Lines(month)); }

    // Each line's number and hash follow from the one before it, from the first line of all on.
    static void ExpectChain(const std::vector<QByteArray> &lines)
    {
        QString prev;
        int seq = 0;
        for (const QByteArray &line : lines) {
            EXPECT_EQ(Json(line)["seq"].toInt(), ++seq) << line.toStdString();
            EXPECT_EQ(Json(line)["prev"].toString().toStdString(), prev.toStdString()) << line.toStdString();
            prev = QString::fromLatin1(QCryptographicHash::hash(line, QCryptographicHash::Sha256).toHex());
        }
    }

    VirtualClock clock;
    std::int64_t now = Moment("2026-11-22T01:39:00.123Z");
    std::vector<std::string> remarks;
};

}  // namespace ombrix::test
