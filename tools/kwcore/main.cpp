// kwcore: inspects and exercises the kwcore library from the command line.
#include <cstdio>
#include <cstring>

#include "Commands.h"

namespace {

const Command kCommands[] = {
    {"guid", "make a GUID, or convert a GUID text into every written form", RunGuidCommand},
    {"types", "list the registered types as a tree by parent", RunTypesCommand},
};

void PrintUsage(std::FILE* out) {
    std::fprintf(out,
                 "usage: kwcore COMMAND [ARGS]\n"
                 "\n"
                 "Commands:\n");
    for (const Command& command : kCommands) {
        std::fprintf(out, "  %-8s %s\n", command.name, command.summary);
    }
    std::fprintf(out, "\nRun 'kwcore COMMAND --help' for the options of a command.\n");
}

}  // namespace

bool WantsHelp(const Arguments& args) {
    for (const std::string& arg : args) {
        if (arg == "--help" || arg == "-h") {
            return true;
        }
    }
    return false;
}

int main(int argc, char** argv) {
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0) {
        PrintUsage(argc < 2 ? stderr : stdout);
        return argc < 2 ? 2 : 0;
    }
    Arguments args(argv + 2, argv + argc);
    for (const Command& command : kCommands) {
        if (std::strcmp(argv[1], command.name) == 0) {
            return command.run(args);
        }
    }
    std::fprintf(stderr, "kwcore: unknown command '%s'\n\n", argv[1]);
    PrintUsage(stderr);
    return 2;
}
