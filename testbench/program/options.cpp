#include "testbench/program/options.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "model/range_tables.h"
#include "platform/folders.h"
#include "testbench/boards.h"

namespace ombrix::bench {
namespace {

constexpr const char *kUsage =
    "Usage: ombrix-testbench [options]\n"
    "\n"
    "Emulates a meter and a calibrator on two pseudo-terminals, in real time. It prints their device paths, COM1 the\n"
    "meter and COM2 the calibrator, then a line a second while something changes. Commands are typed; help lists "
    "them.\n"
    "Ctrl-C ends it.\n"
    "\n"
    "  --board NAME   board of the meter: dc (when none is given), ac, ac2, ac3, lc, tc, temp, rtd, vf;\n"
    "                 an: a DC meter with a transmitter, for its analog output\n"
    "  --kind NAME    dpm (when none is given), wtmtr, ctr; a VF board is always a ctr\n"
    "  --xmtr         the meter is a transmitter\n"
    "  --seed N       draws the meter's hidden errors; 1 when none is given\n"
    "  --uut          the meter hangs on the calibrator's meter port: only COM2 is used\n"
    "  --manual       no calibrator: apply and remove signals with the commands apply and remove\n"
    "  --no-switch    no second meter that switches the signal\n"
    "  --delay MS     time from OPER to the output in force; 200 when none is given\n"
    "  --fault NAME   switch a fault on at once; may be given several times. help lists them; NAME=N for some\n"
    "  --station DIR  write the device paths into section Ports of DIR/Ombrix.ini, and the wiring into Comms\n"
    "  --version      the version\n"
    "  --help         this text\n";

std::string Upper(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return text;
}

std::optional<int> BoardNamed(const std::string &name)
{
    for (int board = 0; board < board::kCount; ++board)
        if (Upper(BoardName(board)) == Upper(name))
            return board;
    return std::nullopt;
}

std::optional<int> KindNamed(const std::string &name)
{
    const std::string upper = Upper(name);
    if (upper == "DPM")
        return kind::kDpm;
    if (upper == "WTMTR")
        return kind::kWtMtr;
    if (upper == "CTR")
        return kind::kCtr;
    return std::nullopt;
}

template <typename Number> bool ReadNumber(const std::string &text, Number &number)
{
    const auto end = std::from_chars(text.data(), text.data() + text.size(), number);
    return end.ec == std::errc() && end.ptr == text.data() + text.size();
}

// Reads one option after the other; the first trouble ends it.
class Reader
{
public:
    explicit Reader(const std::vector<std::string> &arguments) : m_arguments(arguments) {}

    Options Read()
    {
        for (; m_place < m_arguments.size() && m_options.trouble.empty(); ++m_place)
            if (!TakeFlag(m_arguments[m_place]) && !TakeValue(m_arguments[m_place]))
                m_options.trouble = "unknown option '" + m_arguments[m_place] + "'";
        if (m_options.trouble.empty())
            Fit();
        return m_options;
    }

private:
    bool TakeFlag(const std::string &option)
    {
        BenchSetup &setup = m_options.setup;
        if (option == "--help" || option == "-h")
            m_options.help = true;
        else if (option == "--version" || option == "-v")
            m_options.version = true;
        else if (option == "--xmtr")
            setup.xmtr = true;
        else if (option == "--uut")
            setup.uut = true;
        else if (option == "--manual")
            setup.calibrator = false;
        else if (option == "--no-switch")
            setup.outputSwitch = false;
        else
            return false;
        return true;
    }

    bool TakeValue(const std::string &option)
    {
        constexpr const char *kWithValue[] = {"--board", "--kind", "--seed", "--delay", "--fault", "--station"};
        if (std::find(std::begin(kWithValue), std::end(kWithValue), option) == std::end(kWithValue))
            return false;
        if (m_place + 1 >= m_arguments.size()) {
            m_options.trouble = option + " needs a value";
            return true;
        }
        const std::string &value = m_arguments[++m_place];
        if (!StoreValue(option, value))
            m_options.trouble = "'" + value + "' is no value for " + option;
        return true;
    }

    bool StoreValue(const std::string &option, const std::string &value)
    {
        BenchSetup &setup = m_options.setup;
        if (option == "--board")
            return StoreBoard(value);
        if (option == "--kind") {
            m_kind = KindNamed(value);
            return m_kind.has_value();
        }
        if (option == "--seed")
            return ReadNumber(value, setup.seed);
        if (option == "--delay")
            return ReadNumber(value, setup.operateDelayMs) && setup.operateDelayMs >= 0;
        if (option == "--fault") {
            m_options.faults.push_back(value);
            return Bench::IsFault(value);
        }
        return StoreStation(value);
    }

    bool StoreStation(const std::string &value)
    {
        m_options.station = value;
        if (const std::string trouble = value.empty() ? "" : FolderTrouble(value); !trouble.empty())
            m_options.trouble = "the station can't work in '" + value + "': " + trouble;
        return !value.empty();
    }

    bool StoreBoard(const std::string &value)
    {
        if (Upper(value) == "AN") {
            m_options.setup.board = board::kDc;
            m_options.setup.xmtr = true;
            return true;
        }
        const auto board = BoardNamed(value);
        m_options.setup.board = board.value_or(0);
        return board.has_value();
    }

    // Options that exclude each other.
    void Fit()
    {
        BenchSetup &setup = m_options.setup;
        const bool vf = setup.board == board::kVf;
        if (setup.uut && !setup.calibrator)
            m_options.trouble = "--uut needs a calibrator: leave out --manual";
        else if (m_kind && (*m_kind == kind::kCtr) != vf)
            m_options.trouble = "a ctr has the VF board, and no other kind has it";
        setup.kind = vf ? kind::kCtr : m_kind.value_or(kind::kDpm);
    }

    const std::vector<std::string> &m_arguments;
    std::size_t m_place = 0;
    Options m_options;
    std::optional<int> m_kind;
};

}  // namespace

Options ParseOptions(const std::vector<std::string> &arguments)
{
    return Reader(arguments).Read();
}

std::string UsageText()
{
    return kUsage;
}

}  // namespace ombrix::bench
