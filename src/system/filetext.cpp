#include "system/filetext.h"

#include "text/lines.h"

#include <algorithm>
#include <cstddef>
#include <fstream>

namespace tervoxal {

std::string fileText(const std::string& name) {
    std::ifstream in = openInput(name);
    std::string text = wholeText(in);
    refuseUnread(in, name);
    return text;
}

std::string wholeText(std::istream& in) {
    std::string text;
    for (std::string block(1U << 16U, '\0');
         in.read(block.data(), static_cast<std::streamsize>(block.size())), in.gcount() > 0;) {
        text.append(block, 0, static_cast<std::size_t>(in.gcount()));
    }
    return text;
}

std::string lastLine(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    in.seekg(0, std::ios::end);
    in.seekg(std::max<std::streamoff>(0, in.tellg() - std::streamoff(4096)));
    std::string last;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty()) last = line;
    }
    return last;
}

} // namespace tervoxal
