// What another process does until it is killed, or to its end.
#pragma once

#include <cstdint>
#include <functional>

namespace ombrix::test {

/// A few in every run, all of them under OMBRIX_SOAK=1.
int TimesOfSoak(int few, int all);

/// Another process does this for ever and is killed so many microseconds after it has begun. A life that ends by itself
/// fails the test.
void LivesUntilKilled(int micros, const std::function<void()> &life);

/// Another process does this to its end. What it said to be untrue fails the test. It may give its rights away, take
/// limits upon itself, die.
void InAnotherProcess(const std::function<void()> &life);

/// The calling process is a user without rights from now on; one that never had any stays who it is.
void BecomesNobody();

/// To the calling process the disk is full when a file has reached so many bytes; kNoEnd gives it room again.
void FilesEndAt(std::uint64_t bytes);
constexpr std::uint64_t kNoEnd = ~std::uint64_t{0};

}  // namespace ombrix::test
