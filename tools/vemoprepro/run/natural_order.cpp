#include "run/natural_order.h"

#include <string_view>

namespace tool::run {
namespace {

bool is_digit(char letter) {
    return letter >= '0' && letter <= '9';
}

int folded(char letter) {
    const int code = static_cast<unsigned char>(letter);
    return code >= 'A' && code <= 'Z' ? code - 'A' + 'a' : code;
}

// The digits at `at`, without leading zeros; moves behind them.
std::string_view take_number(const std::string& name, std::size_t& at) {
    while (at < name.size() && name[at] == '0') ++at;
    const std::size_t start = at;
    while (at < name.size() && is_digit(name[at])) ++at;
    return std::string_view(name).substr(start, at - start);
}

int compare_numbers(std::string_view one, std::string_view other) {
    if (one.size() != other.size()) return one.size() < other.size() ? -1 : 1;
    return one.compare(other);
}

}  // namespace

bool natural_less(const std::string& one, const std::string& other) {
    std::size_t i = 0, j = 0;
    while (i < one.size() && j < other.size()) {
        int order = 0;
        if (is_digit(one[i]) && is_digit(other[j])) {
            const std::string_view number = take_number(one, i);
            order = compare_numbers(number, take_number(other, j));
        } else {
            order = folded(one[i++]) - folded(other[j++]);
        }
        if (order != 0) return order < 0;
    }
    if ((i == one.size()) != (j == other.size())) return i == one.size();
    return one < other;  // different in zeros or in case
}

}  // namespace tool::run
