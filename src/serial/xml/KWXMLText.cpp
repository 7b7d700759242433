#include "KWXMLText.h"

#include <algorithm>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLString.hpp>

#include "KWXercesGuard.h"

XERCES_CPP_NAMESPACE_USE

namespace kwXMLText {
namespace {
const char* const kUTF8 = "UTF-8";

// XML 1.0 has no form, not even a character reference, for the other control
// characters and for U+FFFE and U+FFFF; a file holding them would not load.
bool IsXMLCharacter(XMLCh c) {
    return c >= 0x20 ? c < 0xFFFE : c == 0x9 || c == 0xA || c == 0xD;
}

bool IsASCII(unsigned c) {
    return c < 0x80;
}

// ASCII, most stored text, widens and narrows unit by unit; anything else
// goes through Xerces' UTF-8 transcoder.
bool WidenUTF8(const std::string& bytes, DOMString& xml) {
    if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return IsASCII(c & 0xFF); })) {
        xml.assign(bytes.begin(), bytes.end());
        return true;
    }
    return kwXerces::Guarded(false, [&] {
        TranscodeFromStr wide(reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(), kUTF8);
        xml.assign(wide.str(), wide.length());
        return true;
    });
}
}  // namespace

bool ToDOM(const CString& text, DOMString& xml) {
    return WidenUTF8(text.GetStdString(), xml) &&
           std::all_of(xml.begin(), xml.end(), IsXMLCharacter);
}

bool FromDOM(const XMLCh* xml, CString& text) {
    if (!xml || !*xml) {
        text.Empty();
        return true;
    }
    const XMLCh* end = xml + XMLString::stringLen(xml);
    if (std::all_of(xml, end, IsASCII)) {
        text = std::string(xml, end);
        return true;
    }
    return kwXerces::Guarded(false, [&] {
        TranscodeToStr narrow(xml, kUTF8);
        text = std::string(reinterpret_cast<const char*>(narrow.str()), narrow.length());
        return true;
    });
}

}  // namespace kwXMLText
