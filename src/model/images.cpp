#include "model/images.h"

#include "model/nominal_tables.h"
#include "model/nominals.h"
#include "session/state.h"

namespace ombrix {
namespace {

// What differs from board to board in the words below the calibration block. The images of all boards but DC are
// assumed: gains at mid scale, no offsets, the rest as on DC.
struct BoardWords {
    int board;
    const char *configuration;  ///< word 21: CONFIG and board code
    const char *decimals;       ///< word 20: ANSET and SYSDP
    const char *range;          ///< word 16: SETUP and range code
};

constexpr BoardWords kBoardWords[] = {
    {kDc, "0001", "0503", "0060"},   {kAc, "0002", "0503", "0080"},  {kAc2, "0012", "0503", "0080"},
    {kAc3, "0022", "0503", "0080"},  {kLc, "0003", "0504", "00C0"},  {kTc, "0031", "0502", "0040"},
    {kTemp, "0001", "0502", "0040"}, {kRtd, "0041", "0502", "0050"},
};

constexpr const char *kWords56To51 = "0000"  // ZERO WIDE, % / 8 OL
                                     "0000"  // 5A OL, 600 OL
                                     "0000"
                                     "0000"
                                     "0ED6"           // SECRET, OLVALUE
                                     "0600";          // FIRSTM, FIRSTB
constexpr const char *kWords24To22 = "000000000000";  // DEVIAT2, DEVIAT1
constexpr const char *kWords19To17 = "0000"           // LOCKOUT
                                     "21D1"           // SER_2, SER_1
                                     "6536";          // OPTIONS, FILTER
constexpr const char *kWords15To0 = "2000"            // ALCNF
                                    "004E20000000"    // AN HI, AN LO
                                    "004E20004E20"    // HI RD, HI IN
                                    "000000000000"    // LO RD, LO IN
                                    "000000100004"    // OFFSET, SCALE
                                    "0007D00003E8";   // SETPT2, SETPT1

// The counter's words 49..44, 40..18 and 17..0.
constexpr const char *kVfImage = "000000000000000000000000"  // totals
                                 "2A01"                      // RECOGCHR "*", without which it hears no frame; SYSDP
                                 "0E00"                      // SECRET, RESOLUTN
                                 "0000"                      // SLOPE
                                 "0001"                      // PULSES
                                 "5511"                      // SCALEMUL, ANASET
                                 "0000"                      // SOURCE, BATCH
                                 "001E001E"                  // TIMEOUT, GATETIM
                                 "00000000"                  // LOCKOUT, CONFIG, SERCNF3
                                 "21D1"                      // SERCNF2, SERCNF1
                                 "6536"                      // OPTIONS, FILTER
                                 "0081"                      // SETUP, INPTYPE
                                 "2000"                      // ALCNF
                                 "0186A0000000"              // ANHIGH, ANLOW
                                 "000000000000"              // DEVTN2, DEVTN1
                                 "000000100001"              // OFFST2, SCALE2
                                 "000000100001"              // OFFST1, SCALE1
                                 "0007D00003E8"              // SETPT2, SETPT1
                                 "0186A00186A0"              // HI_RD2, HI_IN2
                                 "000000000000"              // LOWRD2, LOWIN2
                                 "0186A00186A0"              // HI_RD1, HI_IN1
                                 "000000000000";             // LOWRD1, LOWIN1

// A word that no step trims carries the value of the one that is trimmed with it.
int LeaderOf(int board, int word)
{
    if (board == kTc || board == kTemp) {
        if (word == 31 || word == 32 || word == 46)
            return 33;
        if (word == 34 || word == 35)
            return 36;
    }
    if (board == kRtd) {
        if (word == 40)
            return 31;
        if (word == 38 || word == 39)
            return 37;
    }
    return word;
}

const BoardWords *WordsOf(int board)
{
    for (const BoardWords &words : kBoardWords)
        if (words.board == board)
            return &words;
    return nullptr;
}

std::string ImageOf(int board, std::string (*nominalWord)(int board, int word))
{
    if (board == kVf)
        return kVfImage;
    const BoardWords *words = WordsOf(board);
    if (!words)
        return "";
    std::string image = kWords56To51;
    for (int word = kLastNominalWord; word >= kFirstNominalWord; --word)
        image += nominalWord(board, LeaderOf(board, word));
    return image + kWords24To22 + words->configuration + words->decimals + kWords19To17 + words->range + kWords15To0;
}

}  // namespace

std::string BoardInitImage(int board)
{
    return ImageOf(board, NominalWordOf);
}

std::string DefaultInitImage(int board)
{
    return ImageOf(board, DefaultNominalWordOf);
}

}  // namespace ombrix
