// kwcore types: the registered types as a tree by parent.
#include <algorithm>
#include <cstdio>
#include <list>
#include <map>
#include <string>
#include <vector>

#include "Commands.h"
#include "kwcore/object/CKWTypeSystem.h"

namespace kwCommands {
namespace {

const char kHelp[] =
    "usage: kwcore types\n"
    "\n"
    "Lists every type registered in this process as a tree by parent type,\n"
    "with its type GUID, the repository it was collected into (\"library\" for\n"
    "the library's own types) and its number of live instances.\n";

using Children = std::map<const IKWObjectType*, std::vector<IKWObjectType*>>;

std::string RepositoryLabel(IKWObjectType* type) {
    CKWGuid repository = type->GetRepositoryID();
    if (repository == CKWGuid(CKWTypeSystem::LIBRARY_REPOSITORY_ID)) {
        return "library";
    }
    if (!repository.IsValid()) {
        return "(not collected)";
    }
    return static_cast<const char*>(repository.GetCStringUpperCase());
}

int InstanceCount(IKWObjectType* type) {
    std::list<CKWGuid> instances;
    type->GetInstanceList(instances);
    return static_cast<int>(instances.size());
}

void PrintType(IKWObjectType* type, int depth, const Children& children) {
    std::string name(static_cast<std::size_t>(depth) * 2, ' ');
    name += static_cast<const char*>(type->GetName());
    if (type->IsAbstract()) {
        name += " (abstract)";
    }
    std::printf("%-44s %s  %-16s %d\n", name.c_str(),
                static_cast<const char*>(type->GetID().GetCStringUpperCase()),
                RepositoryLabel(type).c_str(), InstanceCount(type));
    auto found = children.find(type);
    if (found == children.end()) {
        return;
    }
    for (IKWObjectType* child : found->second) {
        PrintType(child, depth + 1, children);
    }
}

bool ByName(IKWObjectType* a, IKWObjectType* b) {
    return std::string(a->GetName()) < std::string(b->GetName());
}

}  // namespace

int RunTypesCommand(const Arguments& args) {
    if (WantsHelp(args)) {
        std::fputs(kHelp, stdout);
        return 0;
    }
    if (!args.empty()) {
        std::fputs("kwcore types: takes no arguments\n", stderr);
        return 2;
    }
    Children children;
    std::vector<IKWObjectType*> roots;
    auto it = CKWTypeSystem::GetGlobalIterator();
    for (IKWObjectType* type = it.GetNext(1); type; type = it.GetNext(0)) {
        IKWObjectType* parent = type->GetParentType();
        (parent ? children[parent] : roots).push_back(type);
    }
    std::sort(roots.begin(), roots.end(), ByName);
    for (auto& entry : children) {
        std::sort(entry.second.begin(), entry.second.end(), ByName);
    }
    std::printf("%-44s %-38s  %-16s %s\n", "TYPE", "TYPE ID", "REPOSITORY", "INSTANCES");
    for (IKWObjectType* root : roots) {
        PrintType(root, 0, children);
    }
    return 0;
}

}  // namespace kwCommands
