// The meter behind the calibrator: frames tunnelled through its UUT port as definite-length blocks.
//
// A block is `#`, one digit that tells how many length digits follow, those digits, the data, CR LF; or `#0`, data,
// CR LF. A frame is opaque here.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ombrix {

void UutSetup(std::string_view baud);
void UutFlush();
void UutSend(std::string_view frame);
/// The data of one block; what has come of it after 1000 ms of silence; "" after Abort.
std::string UutReceive();

enum class UutState {
    NeedsMore,  ///< the block isn't complete yet
    Whole,      ///< a whole block with its CR LF
    Bad,        ///< a length that is no number: never becomes a block
};

/// What a buffer holds so far.
struct UutBlock {
    UutState state = UutState::NeedsMore;
    std::size_t start = 0;   ///< place of the data
    std::size_t length = 0;  ///< its length as far as known
};
/// Pure. `buffer` begins with "#" or is empty; the caller has cut what stands before.
UutBlock ParseUutBlock(std::string_view buffer);

}  // namespace ombrix
