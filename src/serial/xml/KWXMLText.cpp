#include "KWXMLText.h"

#include <algorithm>
#include <xercesc/util/TransService.hpp>

XERCES_CPP_NAMESPACE_USE

namespace {
const char* const kUTF8 = "UTF-8";

// XML 1.0 has no form, not even a character reference, for the other control
// characters and for U+FFFE and U+FFFF; a file holding them would not load.
bool IsXMLCharacter(XMLCh c) {
    return c >= 0x20 ? c < 0xFFFE : c == 0x9 || c == 0xA || c == 0xD;
}
}  // namespace

bool KWToXMLText(const CString& text, KWXMLString& xml) {
    return KWXMLGuarded(false, [&] {
        const std::string& bytes = text.GetStdString();
        TranscodeFromStr wide(reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(), kUTF8);
        xml.assign(wide.str(), wide.length());
        return std::all_of(xml.begin(), xml.end(), IsXMLCharacter);
    });
}

bool KWFromXMLText(const XMLCh* xml, CString& text) {
    if (!xml || !*xml) {
        text.Empty();
        return true;
    }
    return KWXMLGuarded(false, [&] {
        TranscodeToStr narrow(xml, kUTF8);
        text = std::string(reinterpret_cast<const char*>(narrow.str()), narrow.length());
        return true;
    });
}
