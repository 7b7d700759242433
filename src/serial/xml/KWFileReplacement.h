// Replacing a file only with a complete new one: the content goes to a
// temporary file in the target's folder, made durable, which then takes the
// target's name in one step (a rename). Readers see the old file or the new
// one, never a part; a failure leaves the old file and no temporary one.
#pragma once

#include <string>

namespace kwFileReplacement {

// false when the file could not be replaced (the old one is then unchanged).
bool Replace(const std::string& target, const std::string& content);

}  // namespace kwFileReplacement
