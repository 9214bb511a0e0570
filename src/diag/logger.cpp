#include "diag/logger.h"

#include <ios>
#include <locale>
#include <sstream>

namespace diag {

std::string format(std::int32_t level, std::uint32_t owner, std::uint32_t code,
                   std::string_view text) {
    std::ostringstream out;
    out.imbue(std::locale::classic());  // the host's global locale may group digits
    switch (level) {
        case kTraceLevel:
            out << "<TRACE>" << text << "</TRACE>\n";
            break;
        case kInfoLevel:
            out << "<INFO>" << text << "</INFO>\n";
            break;
        case kWarningLevel:
            out << "<WARNING>" << text << "</WARNING>\n";
            break;
        case kErrorLevel:
            out << std::hex << std::showbase << "<ERROR OWNER=\"" << owner << "\" CODE=\"" << code
                << "\">" << text << "</ERROR>\n";
            break;
        default:
            out << text;
    }
    return out.str();
}

std::int32_t report(LoggerSlot slot, std::uint32_t owner, std::int32_t level, std::uint32_t code,
                    const char* text) {
    if (slot == nullptr || *slot == nullptr) return 0;
    Logger& logger = **slot;
    if (level < logger.level || logger.active <= 0) return 0;
    if (owner == 0) owner = kUnknownOwner;
    // Caught here and not at the C boundary, since a failing log must not turn into a failing
    // operation.
    try {
        if (logger.level > kTaggedUpToLevel) return logger.log(owner, level, code, text);
        return logger.log(owner, level, code, format(level, owner, code, text).c_str());
    } catch (...) {
        return -1;
    }
}

}  // namespace diag
