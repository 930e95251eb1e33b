// A counter's configuration that was kept before a calibration, to be restored after it. It lies in a file beside the
// settings until it was restored, so a crash in between loses nothing.
#pragma once

#include <string>

namespace ombrix {

constexpr std::size_t kConfigDigits = 200;  ///< words 49 to 0, highest first

/// Who RestConfigImage belongs to and when it was kept; all "" as long as nothing is.
struct KeptConfigOrigin {
    std::string meter;
    std::string utc;
    std::string visit;  ///< "" when an earlier run of the program kept it
};
const KeptConfigOrigin &OriginOfKeptConfig();

/// Program start: what an earlier run kept becomes RestConfigImage. A file that isn't whole counts as none.
void LoadKeptConfig();
struct ConfigKept {
    std::string trouble;     ///< the system's words when it is kept in memory alone, "" when it is in the file
    KeptConfigOrigin aside;  ///< of one that was never restored and lies in KeptConfig.txt.old now
};
/// Keeps an image, also as RestConfigImage; with `lasting` in the file too. What else still lies there is set aside
/// first, and when that fails it stays where it is.
ConfigKept KeepConfig(const std::string &image, const std::string &meter, bool lasting);
/// RestConfigImage was restored: the file goes if it holds that, RestConfigImage stays for this run.
void ForgetKeptConfig();

}  // namespace ombrix
