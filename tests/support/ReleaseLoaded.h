// Releasing every object loaded from an archive, once: objects that others own
// (a node's edges, a preference set's sections) go with their owners or first.
#pragma once

#include <set>

#include "kwcore/object/IKWObject.h"

void ReleaseEachLoadedObject(const std::set<IKWObject*>& loaded);
