// The subcommands of the kwcore tool. Each takes the arguments after its
// name and returns the process exit status.
#pragma once

#include <string>
#include <vector>

using Arguments = std::vector<std::string>;

struct Command {
    const char* name;
    const char* summary;
    int (*run)(const Arguments& args);
};

int RunGuidCommand(const Arguments& args);
int RunTypesCommand(const Arguments& args);

// True when the arguments ask for help ("--help" or "-h").
bool WantsHelp(const Arguments& args);
