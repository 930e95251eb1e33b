#include "session/journal_line.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace ombrix {
namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

constexpr qint64 kLastSeq = qint64{1} << 53;  // beyond it other readers of JSON round
constexpr std::size_t kUsualLine = 512;
constexpr std::size_t kAroundContent = 64;

template <class Number> std::string ShortestText(Number number)
{
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return {text.data(), end};
}

bool Continues(unsigned char byte)
{
    return (byte & 0xc0u) == 0x80u;
}

// Length of the character at the start of a text; 0 when its bytes are none.
std::size_t CharacterLength(std::string_view text)
{
    const auto at = [text](std::size_t place) {
        return place < text.size() ? static_cast<unsigned char>(text[place]) : static_cast<unsigned char>(0);
    };
    const unsigned char first = at(0);
    if (first < 0x80)
        return 1;
    if (first >= 0xc2 && first <= 0xdf)
        return Continues(at(1)) ? 2 : 0;
    if ((first & 0xf0u) == 0xe0u) {
        const bool overlong = first == 0xe0 && at(1) < 0xa0;
        const bool surrogate = first == 0xed && at(1) > 0x9f;
        return Continues(at(1)) && Continues(at(2)) && !overlong && !surrogate ? 3 : 0;
    }
    if (first < 0xf0 || first > 0xf4)
        return 0;
    const bool overlong = first == 0xf0 && at(1) < 0x90;
    const bool beyond = first == 0xf4 && at(1) > 0x8f;
    return Continues(at(1)) && Continues(at(2)) && Continues(at(3)) && !overlong && !beyond ? 4 : 0;
}

void AppendByte(std::string &json, std::string_view prefix, unsigned char byte)
{
    json += prefix;
    json += kHexDigits[byte / 16u];
    json += kHexDigits[byte % 16u];
}

// Of nearly every character of nearly every text nothing need be known.
bool IsPlain(char c)
{
    return c >= 0x20 && c < 0x7f && c != '"' && c != '\\';
}

// One character that isn't plain, or a byte that is none. Returns how many bytes it took.
std::size_t AppendCharacter(std::string &json, std::string_view text)
{
    const std::size_t length = CharacterLength(text);
    const auto first = static_cast<unsigned char>(text.front());
    if (length == 0)
        AppendByte(json, R"(\\x)", first);
    else if (first < 0x20 || first == 0x7f)
        AppendByte(json, R"(\u00)", first);
    else if (length == 1)
        (json += '\\') += text.front();
    else
        json += text.substr(0, length);
    return std::max<std::size_t>(length, 1);
}

void AppendText(std::string &json, std::string_view text)
{
    json += '"';
    for (std::size_t place = 0; place < text.size();) {
        std::size_t end = place;
        while (end < text.size() && IsPlain(text[end]))
            ++end;
        json += text.substr(place, end - place);
        place = end == text.size() ? end : end + AppendCharacter(json, text.substr(end));
    }
    json += '"';
}

void AppendNumber(std::string &json, double number)
{
    if (std::isfinite(number))
        json += ShortestText(number);
    else
        AppendText(json, ShortestText(number));
}

void AppendList(std::string &json, const std::vector<std::string> &texts)
{
    json += '[';
    for (const std::string &text : texts) {
        if (json.back() != '[')
            json += ',';
        AppendText(json, text);
    }
    json += ']';
}

struct ValueAppender {
    std::string &json;
    void operator()(const std::string &text) const { AppendText(json, text); }
    void operator()(double number) const { AppendNumber(json, number); }
    void operator()(bool yes) const { json += yes ? "true" : "false"; }
    void operator()(const std::vector<std::string> &texts) const { AppendList(json, texts); }
};

void AppendName(std::string &json, std::string_view name)
{
    if (!json.empty() && json.back() != '{')
        json += ',';
    AppendText(json, name);
    json += ':';
}

void AppendMember(std::string &json, std::string_view name, std::string_view text)
{
    AppendName(json, name);
    AppendText(json, text);
}

std::optional<JournalValue> ValueOf(const QJsonValue &json)
{
    if (json.isString())
        return JournalValue(json.toString().toStdString());
    if (json.isDouble())
        return JournalValue(json.toDouble());
    if (json.isBool())
        return JournalValue(json.toBool());
    if (!json.isArray())
        return std::nullopt;
    std::vector<std::string> texts;
    for (const auto &text : json.toArray())
        texts.push_back(text.toString().toStdString());
    return JournalValue(std::move(texts));
}

bool HoldsTexts(const QJsonObject &object)
{
    constexpr std::array<const char *, 7> kNames = {"id", "utc", "station", "version", "visit", "kind", "prev"};
    return std::all_of(kNames.begin(), kNames.end(), [&](const char *name) { return object[name].isString(); });
}

}  // namespace

JournalValue::JournalValue(float number)
{
    const std::string text = ShortestText(number);
    double value = number;
    std::from_chars(text.data(), text.data() + text.size(), value);
    is = value;
}

const JournalValue *FieldOf(const JournalEvent &event, std::string_view name)
{
    for (const auto &[key, value] : event.body)
        if (key == name)
            return &value;
    return nullptr;
}

std::string TextOf(const JournalEvent &event, std::string_view name)
{
    const JournalValue *field = FieldOf(event, name);
    const auto *text = field ? std::get_if<std::string>(&field->is) : nullptr;
    return text ? *text : "";
}

double NumberOf(const JournalEvent &event, std::string_view name)
{
    const JournalValue *field = FieldOf(event, name);
    const auto *number = field ? std::get_if<double>(&field->is) : nullptr;
    return number ? *number : 0;
}

std::string JournalContent(const JournalEvent &event)
{
    std::string json;
    json.reserve(kUsualLine);
    AppendMember(json, "id", event.id);
    AppendMember(json, "utc", event.utc);
    AppendName(json, "monotonicMs");
    json += std::to_string(event.monotonicMs);
    AppendMember(json, "station", event.station);
    AppendMember(json, "version", event.version);
    AppendMember(json, "visit", event.visit);
    AppendMember(json, "kind", event.kind);
    json += R"(,"body":{)";
    for (const auto &[name, value] : event.body) {
        AppendName(json, name);
        std::visit(ValueAppender{json}, value.is);
    }
    json += '}';
    return json;
}

std::string JournalLine(std::int64_t seq, std::string_view content, std::string_view prev)
{
    std::string json = R"({"seq":)";
    json.reserve(content.size() + prev.size() + kAroundContent);
    json += std::to_string(seq);
    json += ',';
    json += content;
    AppendMember(json, "prev", prev);
    json += '}';
    return json;
}

std::optional<JournalEvent> ParseJournalLine(std::string_view line)
{
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20; };  // none is ever written
    if (line.size() > kLongestJournalLine || std::any_of(line.begin(), line.end(), isControl))
        return std::nullopt;
    const auto length = static_cast<qsizetype>(line.size());
    const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromRawData(line.data(), length)).object();
    const qint64 seq = object["seq"].toInteger();
    if (seq < 1 || seq > kLastSeq || !HoldsTexts(object) || !object["monotonicMs"].isDouble() ||
        !object["body"].isObject())
        return std::nullopt;
    const auto text = [&object](const char *name) { return object[name].toString().toStdString(); };
    JournalEvent event{seq,
                       text("id"),
                       text("utc"),
                       object["monotonicMs"].toInteger(),
                       text("station"),
                       text("version"),
                       text("visit"),
                       text("kind"),
                       {},
                       text("prev"),
                       HashOfLine(line)};
    const QJsonObject body = object["body"].toObject();
    for (auto field = body.begin(); field != body.end(); ++field)
        if (auto value = ValueOf(field.value()))
            event.body.emplace_back(field.key().toStdString(), std::move(*value));
    return event;
}

std::string HashOfLine(std::string_view line)
{
    const auto length = static_cast<qsizetype>(line.size());
    const QByteArray bytes = QByteArray::fromRawData(line.data(), length);
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().toStdString();
}

}  // namespace ombrix
