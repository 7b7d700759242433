// kwcore: inspects and exercises the kwcore library from the command line.
#include <cstdio>

#include "Commands.h"
#include "kwcore/Config.h"
#include "kwcore/object/CKWTypeSystem.h"

namespace kwCommands {
namespace {

// {2B6EEE3A-CD70-4FF5-9034-D1C599170765}: the repository of the tool's own
// types (the classes of the xml demo).
constexpr GUID kToolRepositoryID = {
    0x2B6EEE3A, 0xCD70, 0x4FF5, {0x90, 0x34, 0xD1, 0xC5, 0x99, 0x17, 0x07, 0x65}};

const Command kCommands[] = {
    {"guid", "make a GUID, or convert a GUID text into every written form", RunGuidCommand},
    {"types", "list the registered types as a tree by parent", RunTypesCommand},
    {"geom", "check transforms: rotations, Euler angles, quaternions, inverses", RunGeomCommand},
    {"triangulate", "triangulate a polygon with holes, and draw it", RunTriangulateCommand},
    {"progress", "run tasks on worker threads: pause, continue, finish and cancel them",
     RunProgressCommand},
    {"reg", "list, get and set registry values; export and import REGEDIT4 files", RunRegCommand},
#if KWCORE_HAS_XML
    {"xml", "inspect XML archive files, and save and load a sample model", RunXmlCommand},
    {"graph", "save a sample graph to an XML archive, load it back and walk it", RunGraphCommand},
#endif
};

void PrintUsage(std::FILE* out, const char* program, const Command* commands, std::size_t count) {
    std::fprintf(out,
                 "usage: %s COMMAND [ARGS]\n"
                 "\n"
                 "Commands:\n",
                 program);
    for (std::size_t i = 0; i < count; ++i) {
        std::fprintf(out, "  %-12s %s\n", commands[i].name, commands[i].summary);
    }
    std::fprintf(out, "\nRun '%s COMMAND --help' for the options of a command.\n", program);
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

int RunCommandFrom(const char* program, const Command* commands, std::size_t count,
                   const Arguments& args) {
    if (args.empty() || args[0] == "--help" || args[0] == "-h") {
        PrintUsage(args.empty() ? stderr : stdout, program, commands, count);
        return args.empty() ? 2 : 0;
    }
    const Arguments rest(args.begin() + 1, args.end());
    for (std::size_t i = 0; i < count; ++i) {
        if (args[0] == commands[i].name) {
            return commands[i].run(rest);
        }
    }
    std::fprintf(stderr, "%s: unknown command '%s'\n\n", program, args[0].c_str());
    PrintUsage(stderr, program, commands, count);
    return 2;
}

}  // namespace kwCommands

int main(int argc, char** argv) {
    // The tool is a host: it collects its own types, and releases the type
    // system last.
    CKWTypeSystem::Initialize(CKWGuid(kwCommands::kToolRepositoryID));
    const int status = kwCommands::RunCommandFrom("kwcore", kwCommands::kCommands,
                                                  kwCommands::Arguments(argv + 1, argv + argc));
    CKWTypeSystem::Release();
    return status;
}
