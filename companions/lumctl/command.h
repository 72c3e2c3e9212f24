// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

class QCommandLineParser;
class Session;

/// How lumctl ends; see lumctl(1).
enum class ExitCode {
    Success = 0,
    Failed = 1,
    Usage = 2,
    NoDaemon = 3,
    Refused = 4,
    TimedOut = 5,
    NoSuchApp = 6,
};

/// One of the things that lumctl does.
struct Command
{
    const char *name;
    /// What it does, in one line and in the user's language; null for one that no person needs.
    QString (*summary)();
    /// Of its arguments, as the help shows them.
    const char *arguments;
    int fewest;
    int most; ///< of arguments
    int timeLimit; ///< in seconds, unless the user gives another; 0 for none
    /// Adds the options of its own; may be null.
    void (*addOptions)(QCommandLineParser &parser);
    ExitCode (*run)(Session &session);
};

extern const Command autostartCommand;
extern const Command clearCacheCommand;
extern const Command clearDataCommand;
extern const Command completeNamesCommand;
extern const Command infoCommand;
extern const Command installCommand;
extern const Command intentCommand;
extern const Command launchCommand;
extern const Command licencesCommand;
extern const Command listCommand;
extern const Command monitorCommand;
extern const Command openCommand;
extern const Command removeCommand;
extern const Command runtimeCommand;
extern const Command settingsCommand;
extern const Command statusCommand;
extern const Command stopCommand;

constexpr int anyNumber = -1;
constexpr int usualTimeLimit = 60;
/// Of what Android does with packages.
constexpr int changeTimeLimit = 600;
