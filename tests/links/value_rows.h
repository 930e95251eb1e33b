// Every value that a procedure applies, with what the panel shows for it and what the simulated calibrator answers.
#pragma once

#include "session/outlets.h"

namespace ombrix::test {

struct ValueRow {
    const char *value;  ///< as it is applied
    double number;      ///< taken apart
    const char *unit;
    const char *byHand;  ///< the panel in Manual mode
    const char *reply;   ///< the simulated answer to OUT?
    const char *driven;  ///< the panel with a calibrator
    Danger level;
};

constexpr ValueRow kValueRows[] = {
    {"0 V", 0, "V", "0.0 V", "0.0000E00,V,0E+00,0,0.00E+00", "0.0 V", Danger::Safe},
    {"20 mV", 20, "mV", "20.0 mV", "2.0000E-02,V,0E+00,0,0.00E+00", "20.0 mV", Danger::Warning},
    {"23.3 mV", 23.3, "mV", "23.3 mV", "2.3300E-02,V,0E+00,0,0.00E+00", "23.3 mV", Danger::Warning},
    {"40 mV", 40, "mV", "40.0 mV", "4.0000E-02,V,0E+00,0,0.00E+00", "40.0 mV", Danger::Warning},
    {"75.6 mV", 75.6, "mV", "75.6 mV", "7.5600E-02,V,0E+00,0,0.00E+00", "75.6 mV", Danger::Warning},
    {"100 mV", 100, "mV", "100.0 mV", "1.0000E-01,V,0E+00,0,0.00E+00", "100.0 mV", Danger::Warning},
    {"180 mV", 180, "mV", "180.0 mV", "1.8000E-01,V,0E+00,0,0.00E+00", "180.0 mV", Danger::Warning},
    {"200 mV", 200, "mV", "200.0 mV", "2.0000E-01,V,0E+00,0,0.00E+00", "200.0 mV", Danger::Warning},
    {"400 mV", 400, "mV", "400.0 mV", "4.0000E-01,V,0E+00,0,0.00E+00", "400.0 mV", Danger::Warning},
    {"1.8 V", 1.8, "V", "1.8 V", "1.8000E00,V,0E+00,0,0.00E+00", "1.8 V", Danger::Warning},
    {"2 V", 2, "V", "2.0 V", "2.0000E00,V,0E+00,0,0.00E+00", "2.0 V", Danger::Warning},
    {"10 V", 10, "V", "10.0 V", "1.0000E01,V,0E+00,0,0.00E+00", "10.0 V", Danger::Warning},
    {"18 V", 18, "V", "18.0 V", "1.8000E01,V,0E+00,0,0.00E+00", "18.0 V", Danger::Warning},
    {"20 V", 20, "V", "20.0 V", "2.0000E01,V,0E+00,0,0.00E+00", "20.0 V", Danger::Danger},
    {"180 V", 180, "V", "180.0 V", "1.8000E02,V,0E+00,0,0.00E+00", "180.0 V", Danger::Danger},
    {"200 V", 200, "V", "200.0 V", "2.0000E02,V,0E+00,0,0.00E+00", "200.0 V", Danger::Danger},
    {"660 V", 660, "V", "660.0 V", "6.6000E02,V,0E+00,0,0.00E+00", "660.0 V", Danger::Danger},
    {"1 mA", 1, "mA", "1.0 mA", "1.0000E-03,A,0E+00,0,0.00E+00", "1.0 mA", Danger::Safe},
    {"1.8 mA", 1.8, "mA", "1.8 mA", "1.8000E-03,A,0E+00,0,0.00E+00", "1.8 mA", Danger::Safe},
    {"2 mA", 2, "mA", "2.0 mA", "2.0000E-03,A,0E+00,0,0.00E+00", "2.0 mA", Danger::Warning},
    {"18 mA", 18, "mA", "18.0 mA", "1.8000E-02,A,0E+00,0,0.00E+00", "18.0 mA", Danger::Warning},
    {"20 mA", 20, "mA", "20.0 mA", "2.0000E-02,A,0E+00,0,0.00E+00", "20.0 mA", Danger::Warning},
    {"180 mA", 180, "mA", "180.0 mA", "1.8000E-01,A,0E+00,0,0.00E+00", "180.0 mA", Danger::Warning},
    {"200 mA", 200, "mA", "200.0 mA", "2.0000E-01,A,0E+00,0,0.00E+00", "200.0 mA", Danger::Warning},
    {"3.5 A", 3.5, "A", "3.5 A", "3.5000E00,A,0E+00,0,0.00E+00", "3.5 A", Danger::Warning},
    {"5 A", 5, "A", "5.0 A", "5.0000E00,A,0E+00,0,0.00E+00", "5.0 A", Danger::Danger},
    {"2 mV", 2, "mV", "2.0 mV", "2.0000E-03,V,0E+00,0,0.00E+00", "2.0 mV", Danger::Warning},
    {"600 V", 600, "V", "600.0 V", "6.0000E02,V,0E+00,0,0.00E+00", "600.0 V", Danger::Danger},
    {"56.7 mV", 56.7, "mV", "56.7 mV", "5.6700E-02,V,0E+00,0,0.00E+00", "56.7 mV", Danger::Warning},
    {"17.475 mV", 17.475, "mV", "17.5 mV", "1.7475E-02,V,0E+00,0,0.00E+00", "17.5 mV", Danger::Warning},
    {"20 OHM", 20, "OHM", "20.0 Ohm", "2.0000E01,OHM,0E+00,0,0.00E+00", "20.0 Ohm", Danger::Safe},
    {"200 OHM", 200, "OHM", "200.0 Ohm", "2.0000E02,OHM,0E+00,0,0.00E+00", "200.0 Ohm", Danger::Safe},
    {"2 KOHM", 2, "KOHM", "2.0 kOhm", "2.0000E03,OHM,0E+00,0,0.00E+00", "2.0 kOhm", Danger::Safe},
    {"20 KOHM", 20, "KOHM", "20.0 kOhm", "2.0000E04,OHM,0E+00,0,0.00E+00", "20.0 kOhm", Danger::Safe},
    {"100 KOHM", 100, "KOHM", "100.0 kOhm", "1.0000E05,OHM,0E+00,0,0.00E+00", "100.0 kOhm", Danger::Safe},
    {"345.28 OHM", 345.28, "OHM", "345.3 Ohm", "3.4528E02,OHM,0E+00,0,0.00E+00", "345.3 Ohm", Danger::Safe},
    {"-200 mV", -200, "mV", "-200.0 mV", "-2.0000E-01,V,0E+00,0,0.00E+00", "-200.0 mV", Danger::Warning},
    {"-2 V", -2, "V", "-2.0 V", "-2.0000E00,V,0E+00,0,0.00E+00", "-2.0 V", Danger::Warning},
    {"-20 V", -20, "V", "-20.0 V", "-2.0000E01,V,0E+00,0,0.00E+00", "-20.0 V", Danger::Danger},
    {"-660 V", -660, "V", "-660.0 V", "-6.6000E02,V,0E+00,0,0.00E+00", "-660.0 V", Danger::Danger},
    {"1 mV", 1, "mV", "1.0 mV", "1.0000E-03,V,0E+00,0,0.00E+00", "1.0 mV", Danger::Safe},
    {"2 V, 300 Hz", 2, "V", "2.0 V", "2.0000E00,V,0E+00,0,0.00E+00", "2.0 V", Danger::Warning},
    {"200 mV, 300 Hz", 200, "mV", "200.0 mV", "2.0000E-01,V,0E+00,0,0.00E+00", "200.0 mV", Danger::Warning},
    {"600 V, 300 Hz", 600, "V", "600.0 V", "6.0000E02,V,0E+00,0,0.00E+00", "600.0 V", Danger::Danger},
    {"3.5 A, 300 Hz", 3.5, "A", "3.5 A", "3.5000E00,A,0E+00,0,0.00E+00", "3.5 A", Danger::Warning},
    {"1.8 mA, 300 Hz", 1.8, "mA", "1.8 mA", "1.8000E-03,A,0E+00,0,0.00E+00", "1.8 mA", Danger::Safe},
    {"18 mA, 300 Hz", 18, "mA", "18.0 mA", "1.8000E-02,A,0E+00,0,0.00E+00", "18.0 mA", Danger::Warning},
    {"2 V, 10 KHz", 2, "V", "2.0 V", "2.0000E00,V,0E+00,0,0.00E+00", "2.0 V", Danger::Warning},
    {"0 V, 300 Hz", 0, "V", "0.0 V", "0.0000E00,V,0E+00,0,0.00E+00", "0.0 V", Danger::Safe},
    {"0 V, 0 Hz", 0, "V", "0.0 V", "0.0000E00,V,0E+00,0,0.00E+00", "0.0 V", Danger::Safe},
    {"0 CEL", 0, "CEL", "0.0 °C", "0.0000E00,CEL,0E+00,0,0.00E+00", "0.0 °C", Danger::Safe},
    {"32 FAR", 32, "FAR", "32.0 °F", "3.2000E01,FAR,0E+00,0,0.00E+00", "32.0 °F", Danger::Safe},
    {"1356.4 FAR", 1356.4, "FAR", "1356.4 °F", "1.3564E03,FAR,0E+00,0,0.00E+00", "1356.4 °F", Danger::Safe},
    {"387.55 OHM", 387.55, "OHM", "387.6 Ohm", "3.8755E02,OHM,0E+00,0,0.00E+00", "387.6 Ohm", Danger::Safe},
    {"391.391 OHM", 391.391, "OHM", "391.4 Ohm", "3.9139E02,OHM,0E+00,0,0.00E+00", "391.4 Ohm", Danger::Safe},
    {"366.531 OHM", 366.531, "OHM", "366.5 Ohm", "3.6653E02,OHM,0E+00,0,0.00E+00", "366.5 Ohm", Danger::Safe},
    {"18.72 OHM", 18.72, "OHM", "18.7 Ohm", "1.8720E01,OHM,0E+00,0,0.00E+00", "18.7 Ohm", Danger::Safe},
    {"76 mV", 76, "mV", "76.0 mV", "7.6000E-02,V,0E+00,0,0.00E+00", "76.0 mV", Danger::Warning},
    {"38 mV", 38, "mV", "38.0 mV", "3.8000E-02,V,0E+00,0,0.00E+00", "38.0 mV", Danger::Warning},
    {"+10 mV", 10, "mV", "10.0 mV", "1.0000E-02,V,0E+00,0,0.00E+00", "10.0 mV", Danger::Warning},
    {"-10 mV", -10, "mV", "-10.0 mV", "-1.0000E-02,V,0E+00,0,0.00E+00", "-10.0 mV", Danger::Warning},
    {"4 mA", 4, "mA", "4.0 mA", "4.0000E-03,A,0E+00,0,0.00E+00", "4.0 mA", Danger::Warning},
    {"0 mA", 0, "mA", "0.0 mA", "0.0000E00,A,0E+00,0,0.00E+00", "0.0 A", Danger::Safe},
};

}  // namespace ombrix::test
