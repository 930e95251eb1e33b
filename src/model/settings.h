// What the station remembers between sessions: loaded over the tables at start, saved when it changes.
#pragma once

#include <string>

namespace ombrix {

/// Fills all tables with their defaults and overlays them with the settings of Ombrix.ini in the current folder. A
/// first start leaves a complete file.
void InitTables();

void LoadCommSettings();
void LoadGains();
void LoadCalibValues();
void LoadRatios();
void LoadISource();
void LoadQDTarget();
void LoadVFLimits();
void LoadFilters();
void LoadSendFileNames();
void LoadAnaCal();
void LoadPorts();

void SaveCommSettings();
/// Slopes and nominal words. What simulated meters taught is not saved: what real ones taught before stays.
void SaveGains();
void SaveCalibValues();
void SaveRatios();
void SaveISource();
void SaveQDTarget();
void SaveVFLimits();
void SaveSendFileNames();
/// The operator's choices; the analog words too unless a simulated meter taught them.
void SaveAnaCal();

/// Before a simulation: saves what real meters taught (slopes, nominal words, analog words) and remembers it.
void SetLearnedAside();
/// After it: what real meters taught holds again.
void TakeLearnedBack();

/// The device behind COM1 or COM2 (section Ports), by number 1 or 2.
std::string PortDevice(int port);

}  // namespace ombrix
