#include "filetext.h"

#include "lines.h"

#include <fstream>
#include <sstream>
#include <utility>

std::string fileText(const std::string& name) {
    std::ifstream in = openInput(name);
    std::ostringstream text;
    text << in.rdbuf();
    return std::move(text).str();
}
