#include "report/report.h"

#include <map>

namespace tervoxal {

Show showOf(const std::string& format) {
    const std::map<std::string, Show> formats = {
        {"text", showText}, {"json", showJson}, {"vcd", showVcd}, {"dot", showDot}};
    const auto found = formats.find(format);
    return found == formats.end() ? nullptr : found->second;
}

} // namespace tervoxal
