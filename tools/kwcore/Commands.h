// The subcommands of the kwcore tool. Each takes the arguments after its
// name and returns the process exit status: 0 for success, 1 when the work
// failed, 2 for arguments it cannot take.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kwCommands {

using Arguments = std::vector<std::string>;

struct Command {
    const char* name;
    const char* summary;
    int (*run)(const Arguments& args);
};

int RunGuidCommand(const Arguments& args);
int RunTypesCommand(const Arguments& args);
int RunXmlCommand(const Arguments& args);
int RunGeomCommand(const Arguments& args);
int RunTriangulateCommand(const Arguments& args);
int RunGraphCommand(const Arguments& args);
int RunProgressCommand(const Arguments& args);
int RunRegCommand(const Arguments& args);

// True when the arguments ask for help ("--help" or "-h").
bool WantsHelp(const Arguments& args);

// Runs the command that args[0] names with the arguments after it. Without a
// name, with "--help" or "-h" in its place, or with an unknown name, prints
// the usage of program (e.g. "kwcore xml") and its commands instead.
int RunCommandFrom(const char* program, const Command* commands, std::size_t count,
                   const Arguments& args);
template <std::size_t N>
int RunCommandFrom(const char* program, const Command (&commands)[N], const Arguments& args) {
    return RunCommandFrom(program, commands, N, args);
}

}  // namespace kwCommands
