// The sweep status tree, instantiated for the triangulation's edges.
#include "KWSplayTree.inl"
#include "kwcore/geometry/triangulation/KWPolygonTriangulation.h"

namespace kwPolygonTriangulation {

// Exported through the extern declaration in the header.
template class SplayTree<Linebase*, double>;

}  // namespace kwPolygonTriangulation
