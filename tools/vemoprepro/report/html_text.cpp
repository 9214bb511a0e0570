#include "report/html_text.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace tool::report {

std::string escaped(const std::string& text) {
    using Json = nlohmann::ordered_json;
    const std::string dumped = Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
    std::string safe;
    for (const char letter : Json::parse(dumped).get<std::string>()) {
        switch (letter) {
            case '&':
                safe += "&amp;";
                break;
            case '<':
                safe += "&lt;";
                break;
            case '>':
                safe += "&gt;";
                break;
            case '"':
                safe += "&quot;";
                break;
            default:
                safe += letter;
        }
    }
    return safe;
}

std::string base64(const std::string& bytes) {
    static constexpr char kDigits[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        unsigned group = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            group = group << 8 | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0U);
        }
        for (std::size_t k = 0; k < 4; ++k) {
            text += k <= count ? kDigits[group >> (18 - 6 * k) & 63] : '=';
        }
    }
    return text;
}

}  // namespace tool::report
