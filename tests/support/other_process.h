// What another process does until it is killed, or to its end.
#pragma once

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

/// The disk is full when a file of the calling process has reached so many bytes.
void FilesEndAt(unsigned bytes);

}  // namespace ombrix::test
