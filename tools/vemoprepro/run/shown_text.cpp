#include "run/shown_text.h"

#include <cstdint>
#include <cstdio>

namespace tool::run {
namespace {

bool continues(char byte) {
    return (byte & 0xC0) == 0x80;
}

struct Letter {
    std::uint32_t code = 0;
    std::size_t bytes = 1;
    bool valid = false;
};

// The letter of UTF-8 at `at`.
Letter letter_at(const std::string& text, std::size_t at) {
    const auto first = static_cast<unsigned char>(text[at]);
    if (first < 0x80) return {first, 1, true};
    Letter letter;
    const std::size_t bytes = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || at + bytes > text.size()) return letter;
    letter.code = first & (0xFFU >> (bytes + 1));
    for (std::size_t i = 1; i < bytes; ++i) {
        if (!continues(text[at + i])) return letter;
        letter.code = letter.code << 6 | (static_cast<unsigned char>(text[at + i]) & 0x3FU);
    }
    constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = letter.code >= 0xD800 && letter.code <= 0xDFFF;
    letter.valid = letter.code >= kLeast[bytes] && letter.code <= 0x10FFFF && !surrogate;
    if (letter.valid) letter.bytes = bytes;
    return letter;
}

// A terminal would act on it, or show what follows in another order or on another line.
bool is_control(std::uint32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069);
}

std::string escape_of(char byte) {
    switch (byte) {
        case '\n':
            return "\\n";
        case '\t':
            return "\\t";
        case '\r':
            return "\\r";
        default:
            break;
    }
    char text[8];
    std::snprintf(text, sizeof text, "\\x%02x", static_cast<unsigned char>(byte));
    return text;
}

}  // namespace

std::string shown(const std::string& text) {
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const Letter letter = letter_at(text, at);
        const bool plain = letter.valid && !is_control(letter.code);
        for (const std::size_t end = at + letter.bytes; at < end; ++at) {
            if (plain) {
                result += text[at];
            } else {
                result += escape_of(text[at]);
            }
        }
    }
    return result;
}

std::string shortened(const std::string& text, std::size_t length) {
    if (text.size() <= length) return text;
    std::size_t end = length - 3;
    while (end > 0 && continues(text[end])) --end;
    return text.substr(0, end) + "...";
}

}  // namespace tool::run
