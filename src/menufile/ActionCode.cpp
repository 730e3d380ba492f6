#include "menufile/ActionCode.h"

#include "platform/Text.h"

namespace vkl {

std::optional<std::string> codeForLabel(std::string_view label) {
    for (const auto& info : kActionCodes) {
        if (info.label == label) {
            return std::string(info.code);
        }
    }
    return std::nullopt;
}

bool isSubmenuCode(std::string_view code) {
    return text::lower(text::trim(code)) == "s";
}

}  // namespace vkl
