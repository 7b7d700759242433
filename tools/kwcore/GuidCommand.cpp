// kwcore guid [TEXT]: a new GUID, or TEXT in any accepted form converted into
// every form the library writes.
#include <cstdio>
#include <string>

#include "Commands.h"
#include "kwcore/object/CKWGuid.h"

namespace kwCommands {
namespace {

const char kHelp[] =
    "usage: kwcore guid [TEXT]\n"
    "\n"
    "Without TEXT, makes a new random (version 4) GUID. With TEXT, reads it in\n"
    "any form the library accepts and prints every form the library writes:\n"
    "  brace    {95e11590-e209-41b1-811a-263330087175}  (any enclosing pair of characters)\n"
    "  plain    95e11590-e209-41b1-811a-263330087175\n"
    "  xml      GUID_95e11590-e209-41b1-811a-263330087175\n"
    "  xml64    22 characters of URL-safe base 64, as in XML archives\n"
    "  element  \"_\" and the xml64 text, the element names of XML archives\n"
    "  hex      32 hexadecimal digits\n"
    "Hexadecimal digits may be of either case.\n";

// A reader of one text form. Readers leave the value alone when they cannot
// parse, so a text is accepted when reading it into two different starting
// values gives the same result.
struct TextForm {
    const char* name;
    void (*read)(CKWGuid& guid, const std::string& text);
};

const TextForm kForms[] = {
    {"brace", [](CKWGuid& g, const std::string& t) { g.SetCString(t.c_str()); }},
    {"plain", [](CKWGuid& g, const std::string& t) { g.SetCString(("{" + t + "}").c_str()); }},
    {"xml", [](CKWGuid& g, const std::string& t) { g.SetCStringXML(t.c_str()); }},
    {"xml64 or hex", [](CKWGuid& g, const std::string& t) { g.SetCStringXML64(t.c_str()); }},
    {"element", [](CKWGuid& g, const std::string& t) { g.SetCStringXMLElement(t.c_str()); }},
};

const TextForm* Read(const std::string& text, CKWGuid& value) {
    for (const TextForm& form : kForms) {
        CKWGuid fromEmpty;
        CKWGuid fromOther = CKWGuid::CreateNewGUID();
        form.read(fromEmpty, text);
        form.read(fromOther, text);
        if (fromEmpty == fromOther) {
            value = fromEmpty;
            return &form;
        }
    }
    return nullptr;
}

void PrintForms(const CKWGuid& guid) {
    std::printf("brace      %s\n", static_cast<const char*>(guid.GetCString()));
    std::printf("upper      %s\n", static_cast<const char*>(guid.GetCStringUpperCase()));
    std::printf("plain      %s\n", guid.GetSTLStringSQL().c_str());
    std::printf("hex        %s\n", static_cast<const char*>(guid.GetCStringHex()));
    std::printf("xml        %s\n", static_cast<const char*>(guid.GetCStringXML()));
    std::printf("xml64      %s\n", static_cast<const char*>(guid.GetCStringXML64()));
    std::printf("element    %s\n", static_cast<const char*>(guid.GetCStringXMLElement()));
    std::printf("ado-hex    %s\n", guid.GetSTLStringADOHex().c_str());
}

}  // namespace

int RunGuidCommand(const Arguments& args) {
    if (WantsHelp(args)) {
        std::fputs(kHelp, stdout);
        return 0;
    }
    if (args.size() > 1) {
        std::fputs("kwcore guid: expected at most one TEXT\n", stderr);
        return 2;
    }
    if (args.empty()) {
        PrintForms(CKWGuid::CreateNewGUID());
        return 0;
    }
    CKWGuid guid;
    const TextForm* form = Read(args[0], guid);
    if (!form) {
        std::fprintf(stderr, "kwcore guid: '%s' is not a GUID text in any accepted form\n",
                     args[0].c_str());
        return 1;
    }
    std::printf("read as    %s\n", form->name);
    PrintForms(guid);
    return 0;
}

}  // namespace kwCommands
