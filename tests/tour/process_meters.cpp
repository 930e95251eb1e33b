// The pages of thermocouple meters, thermometers and counters, in the simulator.

#include "tour/tour.h"

#include "links/meter_simulator.h"
#include "platform/safe_file.h"
#include "session/state.h"
#include "shell/station.h"
#include "support/scripted_operator.h"
#include "support/station.h"

#include <QDir>

#include <cstdint>
#include <cstdio>
#include <string>

namespace ombrix::tour {
namespace {

using test::ScriptedOperator;
using test::StepButton;

constexpr int kQuietMs = 1100;  // then the status line says what is, not what was

// One walk: a simulated meter, and what the operator does on its pages.
class Walk
{
public:
    Walk(const QString &pictures, ScriptedOperator &person) : m_pictures(pictures), m_person(person) {}

    ScriptedOperator &Person() { return m_person; }
    void Takes(const std::string &name)
    {
        if (m_pictures.isEmpty())
            return;
        const QString file = QDir(m_pictures).filePath(QString::fromStdString(name) + ".png");
        m_person.Waits(kQuietMs).Does([file] { ScriptedOperator::TakesPicture(file); });
    }

private:
    QString m_pictures;
    ScriptedOperator &m_person;
};

void Establishes(Walk &walk, std::uint16_t type, std::uint16_t code, std::uint16_t byte)
{
    SimNvm[109] = type;
    SimNvm[21] = code;
    SimNvm[16] = byte;
    walk.Person().DoubleClicks("lblCalOut").Clicks("cmdEstablish").WaitsUntil("it is established", [] {
        return Established && ScriptedOperator::IsEnabled("cmdSetup");
    });
}

void TrimsTheDiode(Walk &walk)
{
    walk.Person().Clicks(StepButton(7)).WaitsFor("cmdQDReady");
    walk.Takes("quasi-diode-ready");
    walk.Person().Clicks("cmdQDReady").WaitsFor("cmdQDGain").Clicks("cmdQDGain").WaitsFor("cmdQDOffset");
    walk.Person().Clicks("cmdQDOffset").WaitsFor("cmdQDStop(0)");
    walk.Takes("quasi-diode");
    walk.Person().Clicks("cmdQDStop(0)").WaitsFor("cmdSetup");
}

void ChangesTheMeterType(Walk &walk)
{
    walk.Person().Clicks(StepButton(15)).WaitsFor("optMeterType(0)").Clicks("optMeterType(0)");
    walk.Takes("meter-type");
    walk.Person().Clicks("cmdSaveMeterType").WaitsFor("cmdSetup");
}

void WalksTemp(Walk &walk)
{
    Establishes(walk, 0x3201, 0x01, 0x41);
    TrimsTheDiode(walk);
    ChangesTheMeterType(walk);
}

void CalibratesTheCounter(Walk &walk)
{
    walk.Person().Clicks(StepButton(1)).WaitsFor("cmdDone(3)");
    walk.Takes("nominalize");
    walk.Person()
        .Clicks(StepButton(2))
        .WaitsFor("txtVFLim(0)")
        .Types("txtVFLim(0)", "5")
        .Types("txtVFLim(1)", "5")
        .Presses(Qt::Key_Return);
    walk.Person().WaitsFor("cmdVFRdyRpt").Clicks("cmdVFRdyRpt").WaitsFor("cmdVFRdyRpt");
    walk.Takes("vf");
    walk.Person().Clicks(StepButton(14)).WaitsFor(StepButton(16)).Clicks(StepButton(16)).WaitsFor("cmdSetup");
    walk.Takes("rest-config");
}

void WalksCounter(Walk &walk)
{
    Establishes(walk, 0x3203, 0x01, 0x60);
    CalibratesTheCounter(walk);
}

bool WalksAlone(const Options &options, const char *what, void (*script)(Walk &))
{
    const QString pictures = options.pictures.isEmpty() ? "" : QDir(options.pictures).absolutePath();
    const test::WorkFolder folder;
    WriteFile("Ombrix.ini", "[Look]\nTheme=" + options.theme.toStdString() + "\n");
    test::OpenWholeStation();
    bool good = false;
    {
        ScriptedOperator person;
        person.Within(60);
        Walk walk(pictures, person);
        script(walk);
        good = person.Runs();
        std::printf("%s: %s\n", what, good ? "good" : person.Trouble().c_str());
    }
    CloseStation();
    return good;
}

}  // namespace

bool RunProcessMeters(const Options &options)
{
    return WalksAlone(options, "Temp", WalksTemp) && WalksAlone(options, "Counter", WalksCounter);
}

}  // namespace ombrix::tour
