#include "report/figure_text.h"

#include <cmath>

#include "steps/number_text.h"

namespace tool::report {

// The bounds are those at which the rounded figure gets a digit more.
std::string share_text(double share) {
    const double percent = 100 * share;
    if (percent <= 0) return "0 %";
    if (percent < 0.005) return "< 0.01 %";
    return steps::with_digits(percent < 0.095  ? "%.2f %%"
                              : percent < 9.95 ? "%.1f %%"
                                               : "%.0f %%",
                              percent);
}

std::string degrees_text(double degrees) {
    const double rounded = std::round(degrees * 100) / 100;
    return steps::with_digits("%.2f°", rounded == 0 ? 0 : rounded);
}

std::string seconds_text(double seconds) {
    if (seconds < 0.005) return "< 0.01";
    return steps::with_digits(seconds < 9.995 ? "%.2f" : "%.1f", seconds);
}

std::string size_text(int width, int height) {
    return std::to_string(width) + " × " + std::to_string(height);
}

std::string dpi_text(Resolution dpi) {
    return dpi.x == dpi.y ? std::to_string(dpi.x) : size_text(dpi.x, dpi.y);
}

}  // namespace tool::report
