#pragma once

#include <span>
#include <string_view>

namespace orvo::ctl {

class Invocation;

/// What the process ends with.
enum class ExitStatus : int {
    Done = 0,
    /// The thing asked for did not succeed; a message has said why.
    Failed = 1,
    WrongUsage = 2,
    /// As a shell reports a program that SIGINT ended.
    Interrupted = 130,
};

/// A long option; with a value when `value` names one.
struct Option {
    const char* name;
    const char* value;
    const char* description;
};

/// One command of the program, such as "run" or "template check".
struct Verb {
    const char* name;
    /// Its positional arguments, for the usage line.
    const char* arguments;
    const char* summary;
    const char* description;
    std::span<const Option> options;
    ExitStatus (*run)(const Invocation& invocation);
};

extern const Verb applyVerb;
extern const Verb changesVerb;
extern const Verb compareVerb;
extern const Verb copiesVerb;
extern const Verb historyVerb;
extern const Verb outputVerb;
extern const Verb planCheckVerb;
extern const Verb providersVerb;
extern const Verb reviewVerb;
extern const Verb runVerb;
extern const Verb runsVerb;
extern const Verb screenVerb;
extern const Verb snapshotVerb;
extern const Verb templateCheckVerb;
extern const Verb templateCommandVerb;

/// Every command, in the order of the help text.
std::span<const Verb* const> allVerbs();

}  // namespace orvo::ctl
