// The order of a link's attributes in written XML. A link is written type
// first ("T", then "I"), as files always had it; Xerces' DOM keeps an
// element's attributes in name order, so its writer puts "I" first. The
// written text is put back into the order the links were made in.
#pragma once

#include <string>

namespace kwLinkAttributeOrder {

// Swaps every ` I="<22 characters>" T="<22 characters>"` of serialized XML
// in place. Attribute values that hold quotes are escaped, so nothing else
// matches.
void PutTypeBeforeInstance(std::string& xml);

}  // namespace kwLinkAttributeOrder
