// kwcore xml: XML archive files. "inspect" prints one as a tree or checks
// that every object in it loads; "demo" saves the tool's sample model to one
// and loads it back.
#include <cstdio>
#include <string>

#include "CStoredXmlArchive.h"
#include "Commands.h"
#include "DemoModel.h"
#include "XmlInspect.h"

namespace kwCommands {
namespace {

const char kInspectHelp[] =
    "usage: kwcore xml inspect [--check] FILE\n"
    "\n"
    "Prints the XML archive FILE as an indented tree: its documents, the type\n"
    "manifest of each stored type (with the type's name when the type is\n"
    "registered in this process), the objects of each type by instance ID, and\n"
    "each object's fields, named where the type's field table knows them:\n"
    "  values        name = \"text\"                as stored in \"V\"\n"
    "  links         name -> TYPE {INSTANCE-ID}     \"(unset)\" without one\n"
    "  collections   name: N links, then each \"L\" item\n"
    "Elements the loader skips (not named after a GUID) are left out. The\n"
    "types registered here are the library's and those of 'kwcore xml demo'.\n"
    "\n"
    "  --check  load every stored object through the type system instead, and\n"
    "           report what does not resolve: types not registered here,\n"
    "           objects that cannot be read, links to objects the document\n"
    "           does not hold. Exit status 0 when everything resolves, else 1.\n"
    "\n"
    "Exit status 1 when FILE cannot be read or is not XML.\n";

const char kDemoHelp[] =
    "usage: kwcore xml demo FILE\n"
    "\n"
    "Saves the tool's sample model (a bicycle assembly and its three parts: a\n"
    "text, an integer, a GUID, a link and a collection of links, with a cycle)\n"
    "to the XML archive FILE, releases it, loads it back from FILE and compares\n"
    "the two. Exit status 0 when the loaded model equals the saved one, else 1.\n"
    "Inspect the file with 'kwcore xml inspect FILE'.\n";

// {7E9640CF-AC2D-4899-B3DC-C355BC5123D1}: the document the demo saves into.
const char kDemoDocumentID[] = "{7E9640CF-AC2D-4899-B3DC-C355BC5123D1}";

int RunInspect(const Arguments& args) {
    if (WantsHelp(args)) {
        std::fputs(kInspectHelp, stdout);
        return 0;
    }
    bool check = false;
    std::string file;
    for (const std::string& arg : args) {
        if (arg == "--check") {
            check = true;
        } else if (arg.size() > 1 && arg[0] == '-') {
            std::fprintf(stderr, "kwcore xml inspect: unknown option '%s'\n", arg.c_str());
            return 2;
        } else if (!file.empty()) {
            std::fputs("kwcore xml inspect: expected one FILE\n", stderr);
            return 2;
        } else {
            file = arg;
        }
    }
    if (file.empty()) {
        std::fputs("usage: kwcore xml inspect [--check] FILE\n", stderr);
        return 2;
    }
    CStoredXmlArchive archive;
    std::string error;
    if (!archive.Open(file, error)) {
        std::fprintf(stderr, "kwcore xml inspect: %s\n", error.c_str());
        return 1;
    }
    if (check) {
        return kwXmlInspection::CheckStoredObjects(file, archive) ? 0 : 1;
    }
    kwXmlInspection::PrintStoredTree(file, archive);
    return 0;
}

// The loaded objects belong to the caller.
CDemoAssembly* LoadDemoModel(const std::string& file) {
    return dynamic_cast<CDemoAssembly*>(kwXmlArchives::Load(file, CKWGuid(kDemoDocumentID),
                                                            CKWGuid(kwDemoModel::kAssemblyTypeID),
                                                            CKWGuid(kwDemoModel::kAssemblyID)));
}

// The model is released before it is loaded back, so the loaded objects
// take the saved instance IDs and nothing but the file carries them over.
int RunDemo(const Arguments& args) {
    if (WantsHelp(args)) {
        std::fputs(kDemoHelp, stdout);
        return 0;
    }
    if (args.size() != 1) {
        std::fputs("usage: kwcore xml demo FILE\n", stderr);
        return 2;
    }
    const std::string& file = args[0];
    CDemoAssembly* model = kwDemoModel::Make();
    if (!model) {
        std::fputs("kwcore xml demo: the sample model could not be made\n", stderr);
        return 1;
    }
    const std::string saved = kwDemoModel::Describe(model);
    const int savedCount = kwDemoModel::CountObjects();
    const bool written = kwXmlArchives::Save(file, CKWGuid(kDemoDocumentID), model);
    kwDemoModel::ReleaseObjects();
    CDemoAssembly* loaded = written ? LoadDemoModel(file) : nullptr;
    const std::string reloaded = kwDemoModel::Describe(loaded);
    const int loadedCount = kwDemoModel::CountObjects();
    kwDemoModel::ReleaseObjects();
    if (!loaded) {
        std::fprintf(stderr, "kwcore xml demo: cannot save the model to '%s' and load it back\n",
                     file.c_str());
        return 1;
    }
    if (reloaded != saved) {
        std::fprintf(stderr,
                     "kwcore xml demo: the model loaded from '%s' differs from the one saved\n"
                     "saved:\n%sloaded:\n%s",
                     file.c_str(), saved.c_str(), reloaded.c_str());
        return 1;
    }
    std::printf("saved the sample model to %s: %d objects\n", file.c_str(), savedCount);
    std::printf("loaded it back: %d objects, every field and link as saved\n", loadedCount);
    return 0;
}

const Command kXmlCommands[] = {
    {"inspect", "print an XML archive as a tree, or check that everything in it loads", RunInspect},
    {"demo", "save the sample model to an XML archive and load it back", RunDemo},
};

}  // namespace

int RunXmlCommand(const Arguments& args) {
    return RunCommandFrom("kwcore xml", kXmlCommands, args);
}

}  // namespace kwCommands
