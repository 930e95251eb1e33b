// The simulation: a double click on the panel's caption puts the station's own meter and calibrator in the place of
// the real ones, as long as no link was ever established.
#pragma once

class QWidget;

namespace ombrix {

/// Makes fraSim inside `parent`: the meter's revision, and the mark of the simulation.
QWidget *BuildSimulationMark(QWidget *parent);

/// What a double click on lblCalOut does.
void SwitchSimulation();
void ShowSimFlag(bool on);

}  // namespace ombrix
