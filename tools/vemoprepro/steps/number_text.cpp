#include "steps/number_text.h"

#include <cstdio>

namespace tool::steps {

std::string with_digits(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string percent(double share) {
    return with_digits(share < 0.0995 ? "%.1f %%" : "%.0f %%", 100 * share);
}

}  // namespace tool::steps
