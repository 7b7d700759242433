// kept: a link is written type first ("T", then "I"). Xerces' DOM keeps an
// element's attributes in name order, so its writer puts "I" first; the
// written text is put back into the order the links were made in.
#pragma once

#include <string>

// Swaps every ` I="<22 characters>" T="<22 characters>"` of serialized XML
// in place. Attribute values that hold quotes are escaped, so nothing else
// matches.
void KWPutLinkTypeBeforeInstance(std::string& xml);
