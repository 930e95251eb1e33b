#include "session/journal_line.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

using namespace ombrix;

namespace {

JournalEvent Sample()
{
    return {7, "an-id", "2026-11-22T01:39:00.123Z", 1'000'000, "Bench 7", "1.2.3", "a-visit", "round", {}, "0a1b", ""};
}

std::string Line(const JournalEvent &event)
{
    return JournalLine(event.seq, JournalContent(event), event.prev);
}

JournalEvent With(const JournalValue &value)
{
    JournalEvent event = Sample();
    event.body = {{"value", value}};
    return event;
}

QJsonValue InJson(const JournalValue &value)
{
    const auto document = QJsonDocument::fromJson(QByteArray::fromStdString(Line(With(value))));
    EXPECT_TRUE(document.isObject());
    return document.object()["body"].toObject()["value"];
}

std::string TextInJson(const std::string &text)
{
    return InJson(text).toString().toStdString();
}

}  // namespace

TEST(JournalLine, IsJsonInTheOrderOfTheEvent)
{
    JournalEvent event = Sample();
    event.body = {{"word", 35},
                  {"asked", 200.5},
                  {"limited", false},
                  {"reading", "1 2"},
                  {"list", std::vector<std::string>{"a", "\"b\""}}};
    EXPECT_EQ(Line(event), R"({"seq":7,"id":"an-id","utc":"2026-11-22T01:39:00.123Z","monotonicMs":1000000,)"
                           R"("station":"Bench 7","version":"1.2.3","visit":"a-visit","kind":"round",)"
                           R"("body":{"word":35,"asked":200.5,"limited":false,"reading":"1 2",)"
                           R"("list":["a","\"b\""]},"prev":"0a1b"})");
}

TEST(JournalLine, ReadBackIsTheEventWithItsFieldsByName)
{
    JournalEvent event = Sample();
    event.body = {{"word", 65535}, {"asked", -0.25}, {"limited", true}, {"reading", " 1999\r"}, {"none", ""}};
    const std::string line = Line(event);
    JournalEvent expected = event;
    expected.hash = HashOfLine(line);
    expected.body = {{"asked", -0.25}, {"limited", true}, {"none", ""}, {"reading", " 1999\r"}, {"word", 65535}};
    const auto read = ParseJournalLine(line);
    ASSERT_TRUE(read);
    EXPECT_EQ(*read, expected);
    EXPECT_EQ(TextOf(*read, "reading"), " 1999\r");
    EXPECT_EQ(NumberOf(*read, "word"), 65535);
    EXPECT_EQ(TextOf(*read, "word"), "");
    EXPECT_EQ(NumberOf(*read, "missing"), 0);
    EXPECT_EQ(FieldOf(*read, "missing"), nullptr);
}

TEST(JournalLine, KeepsListsAndLongCounts)
{
    JournalEvent event = With(std::vector<std::string>{"0060", "", "FFFF"});
    event.seq = 9'007'199'254'740'991;
    event.monotonicMs = 9'007'199'254'740'993;
    const auto read = ParseJournalLine(Line(event));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->body, event.body);
    EXPECT_EQ(read->seq, event.seq);
    EXPECT_EQ(read->monotonicMs, event.monotonicMs);
}

TEST(JournalLine, WritesNumbersAsAReaderWouldHaveThem)
{
    EXPECT_EQ(InJson(9.737f), 9.737) << "the float's own shortest text, not 9.7370004...";
    EXPECT_EQ(InJson(0.1), 0.1);
    EXPECT_EQ(InJson(std::uint16_t{65535}), 65535);
    EXPECT_EQ(InJson(-1), -1);
    EXPECT_EQ(InJson(1e300), 1e300);
    EXPECT_EQ(InJson(std::nan("")), "nan");
    EXPECT_EQ(InJson(-std::numeric_limits<double>::infinity()), "-inf");
    EXPECT_TRUE(InJson(true).isBool());
    EXPECT_TRUE(InJson("text").isString()) << "a literal is no yes or no";
}

TEST(JournalLine, TakesEveryByteAnInstrumentMaySend)
{
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text = std::string("<") + static_cast<char>(byte) + ">";
        char hex[8];
        std::snprintf(hex, sizeof hex, "<\\x%02X>", byte);
        EXPECT_EQ(TextInJson(text), byte < 128 ? text : std::string(hex)) << byte;
        EXPECT_EQ(Line(With(text)).find('\n'), std::string::npos) << byte;
    }
}

TEST(JournalLine, KeepsCharactersAndShowsBytesThatAreNone)
{
    for (const char *whole : {"Ω", "°C", "€", "\U0001F600", "\u0800", "\uD7FF", "\uE000", "\U0010FFFF"})
        EXPECT_EQ(TextInJson(whole), whole);
    EXPECT_EQ(TextInJson("\xc3"), "\\xC3") << "cut";
    EXPECT_EQ(TextInJson("\xe2\x82"), "\\xE2\\x82") << "cut";
    EXPECT_EQ(TextInJson("\xe2\x82 x"), "\\xE2\\x82 x");
    EXPECT_EQ(TextInJson("\xc0\xaf"), "\\xC0\\xAF") << "overlong";
    EXPECT_EQ(TextInJson("\xe0\x80\xaf"), "\\xE0\\x80\\xAF") << "overlong";
    EXPECT_EQ(TextInJson("\xf0\x80\x80\xaf"), "\\xF0\\x80\\x80\\xAF") << "overlong";
    EXPECT_EQ(TextInJson("\xed\xa0\x80"), "\\xED\\xA0\\x80") << "half a pair";
    EXPECT_EQ(TextInJson("\xf4\x90\x80\x80"), "\\xF4\\x90\\x80\\x80") << "beyond the last character";
    EXPECT_EQ(TextInJson("\xf8\x88\x80\x80\x80"), "\\xF8\\x88\\x80\\x80\\x80");
    EXPECT_EQ(TextInJson("\xf0\x9f\x98"), "\\xF0\\x9F\\x98") << "cut";
}

TEST(JournalLine, IsNoEventWhenAnythingIsMissing)
{
    const auto whole = QJsonDocument::fromJson(QByteArray::fromStdString(Line(Sample()))).object();
    const auto read = [](const QJsonObject &object) {
        return ParseJournalLine(QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString()).has_value();
    };
    EXPECT_TRUE(read(whole));
    for (const QString &name : whole.keys()) {
        QJsonObject less = whole;
        less.remove(name);
        EXPECT_FALSE(read(less)) << name.toStdString();
        less[name] = QJsonValue::Null;
        EXPECT_FALSE(read(less)) << name.toStdString();
    }
    for (const double seq : {0.0, -1.0, 1.5, 1e17, 1e300}) {
        QJsonObject wrong = whole;
        wrong["seq"] = seq;
        EXPECT_FALSE(read(wrong)) << seq;
    }
    EXPECT_FALSE(ParseJournalLine(""));
    EXPECT_FALSE(ParseJournalLine("[]"));
    EXPECT_FALSE(ParseJournalLine(Line(Sample()) + "}"));
    EXPECT_FALSE(ParseJournalLine(std::string(1, '\0') + Line(Sample())));
    EXPECT_FALSE(ParseJournalLine(std::string(100'000, '[')));
}

TEST(JournalLine, AFieldOfAKindThatIsNeverWrittenIsLeftOut)
{
    auto other = QJsonDocument::fromJson(QByteArray::fromStdString(Line(Sample()))).object();
    other["body"] = QJsonObject{{"reading", "1.9"}, {"nothing", QJsonValue::Null}, {"more", QJsonObject()}};
    const auto read = ParseJournalLine(QJsonDocument(other).toJson(QJsonDocument::Compact).toStdString());
    ASSERT_TRUE(read);
    EXPECT_EQ(read->body.size(), 1u);
    EXPECT_EQ(TextOf(*read, "reading"), "1.9");
}

TEST(JournalLine, TheHashIsTheSha256OfItsBytes)
{
    EXPECT_EQ(HashOfLine("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(HashOfLine(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}
