#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/Host.h"

namespace vkl {

// The environment as the editor's path lookups walk it, entry by entry up to the first empty
// one: the name before the first "=" and the value after it (empty without one), both
// lower-cased.
std::vector<std::pair<std::string, std::string>> lowerEnvironment(Host& host);

}  // namespace vkl
