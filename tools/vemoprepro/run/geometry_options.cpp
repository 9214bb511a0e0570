#include "run/geometry_options.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

namespace tool::run {
namespace {

[[noreturn]] void refuse(const std::string& what) {
    throw CLI::ValidationError(what, 1);
}

template <typename Number>
std::optional<Number> number_from(const std::string& text) {
    Number number{};
    const char* begin = text.data() + (text[0] == '+' ? 1 : 0);
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(begin, end, number);
    if (error != std::errc() || rest != end) return std::nullopt;
    return number;
}

// "1,2,3"; empty where one of them is no whole number.
std::vector<int> numbers_from(const std::string& text, char between) {
    std::vector<int> numbers;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(between, begin), text.size());
        const std::optional<int> number = number_from<int>(text.substr(begin, end - begin));
        if (!number) return {};
        numbers.push_back(*number);
        begin = end + 1;
    }
    return numbers;
}

double angle_from(const std::string& text) {
    const std::optional<double> angle = number_from<double>(text);
    if (!angle) refuse("ANGLE comes before INPUT and is a number, '" + text + "' is none");
    if (!(std::abs(*angle) < 360)) refuse("ANGLE: more than -360 and less than 360 degrees");
    return *angle;
}

bool is_level(int number) {
    return number >= 0 && number <= 255;
}

Background background_from(const std::string& text) {
    if (text == "white") return {};
    if (text == "border") return {true, kWhite};
    const std::vector<int> levels = numbers_from(text, ',');
    const bool good = (levels.size() == 1 || levels.size() == 3) &&
                      std::all_of(levels.begin(), levels.end(), is_level);
    if (!good) {
        refuse("--background: " + text +
               " is neither white, border, a grey 0 .. 255 nor a colour R,G,B");
    }
    const auto level = [&](std::size_t i) {
        return static_cast<unsigned char>(levels[levels.size() == 1 ? 0 : i]);
    };
    return {false, {level(0), level(1), level(2)}};
}

bool is_side(int number) {
    return number >= 1 && number <= kLongestSide;
}

steps::ScaleOptions::Size size_from(const std::string& text) {
    const std::vector<int> sides = numbers_from(text, 'x');
    if (sides.size() != 2) refuse("--size: " + text + " is no size like 800x600");
    if (!is_side(sides[0]) || !is_side(sides[1])) {
        refuse("--size: " + text + ": a side has 1 .. 32767 pixels");
    }
    return {sides[0], sides[1]};
}

double factor_from(const std::string& text) {
    const std::optional<double> factor = number_from<double>(text);
    if (!factor || !(*factor > 0) || !std::isfinite(*factor)) {
        refuse("--factor: " + text + " is no number above 0");
    }
    return *factor;
}

Corners corners_from(const std::vector<std::string>& texts) {
    Corners corners{};
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const std::vector<int> place =
            i < texts.size() ? numbers_from(texts[i], ',') : std::vector<int>();
        if (place.size() != 2) {
            refuse("--corners: four corners x,y are needed" +
                   (i < texts.size() ? ", '" + texts[i] + "' is none" : std::string()));
        }
        corners[i] = {place[0], place[1]};
    }
    return in_order(corners);
}

void take_scale(const CLI::App& command, steps::ScaleOptions& scale, const RawOptions& raw) {
    if (command.count("--size") != 0) scale.size = size_from(raw.size);
    if (command.count("--factor") != 0) scale.factor = factor_from(raw.factor);
    if (command.count("--dpi") != 0) scale.dpi = raw.dpi;
    if (!scale.size && !scale.factor && !scale.dpi) {
        refuse("how large? one of --size, --factor and --dpi says it");
    }
    scale.filter = raw.filter == "bilinear" ? Filter::kBilinear : Filter::kBicubic;
}

}  // namespace

void take_geometry(const CLI::App& command, steps::StepOptions& steps, const RawOptions& raw) {
    const auto given = [&](const char* name) {
        const auto* option = command.get_option_no_throw(name);
        return option != nullptr && option->count() > 0;
    };
    if (steps.command == steps::Command::kRotate) steps.angle = angle_from(raw.angle);
    if (steps.command == steps::Command::kScale) take_scale(command, steps.scale, raw);
    if (given("--background")) steps.background = background_from(raw.background);
    if (given("--corners")) steps.corners = corners_from(raw.corners);
}

}  // namespace tool::run
