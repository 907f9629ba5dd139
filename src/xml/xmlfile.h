// An XML file, read with expat piece by piece: the memory is that of what its reader keeps.

#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tervoxal {

/// What a reader of elements is told, in the order of the file. Attributes are names and values by
/// turns, ended by null.
struct XmlHandlers {
    std::function<void(const char* name, const char** attributes)> begin;
    std::function<void()> end;
    std::function<void(std::string_view)> characters; // a text may come in pieces
};

class XmlFile {
public:
    XmlFile(std::string file, XmlHandlers handlers);
    ~XmlFile();
    XmlFile(const XmlFile&) = delete;
    XmlFile& operator=(const XmlFile&) = delete;

    /// Reads the file. Nothing is told from the first refusal on. Comes back where the file is
    /// refused: see end. Ends the process with status 1 and one line on standard error where the
    /// file cannot be read.
    void read();
    /// Refuses the file with the line that is being read. The first refusal is the one that is
    /// told. So is a file that is not well-formed, declares entities or the like, or nests elements
    /// deeper than 1000.
    void refuse(const std::string& what);
    /// Ends the process with status 1 and one line on standard error if the file was refused.
    void endIfRefused() const;

    /// Counted from 1.
    [[nodiscard]] unsigned long line() const;
    [[nodiscard]] bool refused() const { return !fault.empty(); }

private:
    struct Parser;

    std::string file;
    XmlHandlers handlers;
    std::unique_ptr<Parser> parser;
    std::size_t depth = 0;
    std::string fault;
};

/// A name without its prefix.
[[nodiscard]] std::string_view localName(std::string_view name);
/// The value of an attribute, null where it is missing.
[[nodiscard]] const char* attribute(const char** attributes, std::string_view name);

} // namespace tervoxal
