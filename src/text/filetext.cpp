#include "filetext.h"

#include "lines.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <utility>

std::string fileText(const std::string& name) {
    std::ifstream in = openInput(name);
    return wholeText(in);
}

std::string wholeText(std::istream& in) {
    std::ostringstream text;
    text << in.rdbuf();
    return std::move(text).str();
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
