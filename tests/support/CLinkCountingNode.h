// A serializable class whose links are held the way a host might hold them
// (a plain vector) by a field data class written outside the library, which
// counts how often it is read. Graphs of these check that loading reads each
// link field once per object, whatever the order the links meet objects in.
//
//   std::vector<CLinkCountingNode*> graph = NewLinkCountingGraph();
//   ... save graph[0], release the nodes, load one of them back as loaded ...
//   EXPECT_EQ(DescribeLinkCountingGraph(loaded), kLinkCountingGraphLoaded);
#pragma once

#include <string>
#include <vector>

#include "KWTestObjects.h"
#include "kwcore/serial/CKWSerialObject.h"

inline constexpr const char* kLinkCountingNodeTypeID = "{7D2B9E41-6C3A-4F18-B5D0-2E8A1C4F7B63}";
inline constexpr const char* kCountedLinksFieldID = "{8E3CAF52-7D4B-4029-86E1-3F9B2D508C74}";

class CLinkCountingNode : public CKWSerialObject {
    KW_DECLARE_SERIAL_TYPE(CLinkCountingNode)

public:
    CString m_Name;
    std::vector<CLinkCountingNode*> m_Links;  // not owned
    // How often the links field was read.
    int m_iLinkReads = 0;

protected:
    CLinkCountingNode() = default;
};

// Nodes a, b and c: a links b and c, b links a and c, c links b, a and
// itself. Loaded from any of them, a field meets objects not read yet,
// objects being read (a cycle) and objects read completely.
std::vector<CLinkCountingNode*> NewLinkCountingGraph();

// Each node reachable from start, by name: how often its links were read and
// the names it links to ("-" for an unset link), then each name that two
// different objects bear, with "!".
std::string DescribeLinkCountingGraph(CLinkCountingNode* start);

// What a graph from NewLinkCountingGraph describes as once loaded.
inline constexpr const char* kLinkCountingGraphLoaded = "a:1>b,c b:1>a,c c:1>b,a,c";
