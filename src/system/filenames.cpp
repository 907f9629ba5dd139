#include "system/filenames.h"

#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace tervoxal {

std::string runName(const std::string& network, const std::string& pathLen) {
    return network + "k" + pathLen;
}

std::string inputName(const std::string& typed) {
    const std::string_view suffix = inputSuffix;
    std::error_code ignored;
    if (!typed.ends_with(suffix) || std::filesystem::exists(typed + inputSuffix, ignored)) {
        return typed;
    }
    return typed.substr(0, typed.size() - suffix.size());
}

std::string lastPart(const std::string& name) {
    std::string title = name.substr(name.rfind('/') + 1); // after npos comes 0
    return title.empty() ? "network" : title;
}

} // namespace tervoxal
