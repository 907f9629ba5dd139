#include "xml/xmlfile.h"

#include "text/fatal.h"
#include "text/lines.h"
#include "text/message.h"

#include <expat.h>
#include <utility>

namespace tervoxal {

namespace {

// The place in the document. Later versions of expat deprecate counts of unknown width.
#ifdef EXPAT_COUNTS_IN_64_BITS
unsigned long lineOf(XML_Parser parser) { return XML_GetCurrentLineNumber64(parser); }
unsigned long columnOf(XML_Parser parser) { return XML_GetCurrentColumnNumber64(parser); }
#else
unsigned long lineOf(XML_Parser parser) { return XML_GetCurrentLineNumber(parser); }
unsigned long columnOf(XML_Parser parser) { return XML_GetCurrentColumnNumber(parser); }
#endif

constexpr std::size_t deepest = 1000;

XmlFile& of(void* data) { return *static_cast<XmlFile*>(data); }

} // namespace

struct XmlFile::Parser {
    Parser() = default;
    ~Parser() { XML_ParserFree(expat); }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    static void begin(void* data, const char* name, const char** attributes) {
        XmlFile& xml = of(data);
        if (xml.refused()) return;
        if (++xml.depth > deepest) {
            xml.refuse("elements are nested deeper than " + std::to_string(deepest));
        } else {
            xml.handlers.begin(name, attributes);
        }
    }
    static void end(void* data, const char* /*name*/) {
        XmlFile& xml = of(data);
        if (xml.refused()) return;
        --xml.depth;
        xml.handlers.end();
    }
    static void characters(void* data, const char* more, int size) {
        XmlFile& xml = of(data);
        if (!xml.refused()) xml.handlers.characters({more, static_cast<std::size_t>(size)});
    }

    XML_Parser expat = XML_ParserCreate(nullptr);
};

XmlFile::XmlFile(std::string file, XmlHandlers handlers)
    : file(std::move(file)), handlers(std::move(handlers)), parser(std::make_unique<Parser>()) {
    XML_Parser p = parser->expat;
    XML_SetUserData(p, this);
    XML_SetElementHandler(p, Parser::begin, Parser::end);
    XML_SetCharacterDataHandler(p, Parser::characters);
    XML_SetStartDoctypeDeclHandler(
        p, [](void* data, const char*, const char*, const char*, int declares) {
            if (declares != 0) of(data).refuse("a document type with declarations is not read");
        });
    XML_SetSkippedEntityHandler(p, [](void* data, const char* name, int) {
        of(data).refuse("entity " + shown(name) + " is not known");
    });
}

XmlFile::~XmlFile() = default;

void XmlFile::read() {
    constexpr int pieceSize = 1 << 16;
    std::ifstream in = openInput(file);
    XML_Parser p = parser->expat;
    for (bool last = false; !last && !refused();) {
        void* const piece = XML_GetBuffer(p, pieceSize);
        if (piece == nullptr) error(file + ": " + XML_ErrorString(XML_ERROR_NO_MEMORY));
        in.read(static_cast<char*>(piece), pieceSize);
        last = in.eof();
        refuseUnread(in, file);
        if (XML_ParseBuffer(p, static_cast<int>(in.gcount()), last) != XML_STATUS_OK) {
            refuse("column " + std::to_string(columnOf(p) + 1) + ": " +
                   XML_ErrorString(XML_GetErrorCode(p)));
        }
    }
}

void XmlFile::refuse(const std::string& what) {
    if (refused()) return;
    fault = message(file, line(), what);
    XML_StopParser(parser->expat, XML_FALSE);
}

void XmlFile::endIfRefused() const {
    if (refused()) error(fault);
}

unsigned long XmlFile::line() const { return lineOf(parser->expat); }

std::string_view localName(std::string_view name) {
    return name.substr(name.rfind(':') + 1); // after npos comes 0
}

const char* attribute(const char** attributes, std::string_view name) {
    for (; *attributes != nullptr; attributes += 2) {
        if (localName(attributes[0]) == name) return attributes[1];
    }
    return nullptr;
}

} // namespace tervoxal
