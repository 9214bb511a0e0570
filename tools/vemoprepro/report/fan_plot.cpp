#include "report/fan_plot.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "report/figure_text.h"
#include "report/html_text.h"
#include "steps/number_text.h"

namespace tool::report {
namespace {

constexpr double kLeft = 40, kRight = 470, kTop = 14, kBottom = 170;
constexpr double kWidest = 11;  // degrees to either side

class Plot {
  public:
    explicit Plot(const steps::SkewFan& fan) {
        for (const steps::FanCurves* curves : {&fan.lines, &fan.stems}) {
            for (const auto* curve : {&curves->coarse, &curves->fine}) {
                for (const steps::FanPoint& point : *curve)
                    highest_ = std::max(highest_, point.score);
            }
        }
    }

    double x(double degrees) const {
        return kLeft + (degrees + kWidest) / (2 * kWidest) * (kRight - kLeft);
    }
    double y(double score) const { return kBottom - score / (highest_ * 1.08) * (kBottom - kTop); }

    std::string axes() const {
        std::string text;
        for (int degrees = -10; degrees <= 10; degrees += 5) {
            const std::string at = number(x(degrees));
            text += "<line class=\"grid\" x1=\"" + at + "\" x2=\"" + at + "\" y1=\"" +
                    number(kTop) + "\" y2=\"" + number(kBottom) + "\"/><text x=\"" + at +
                    "\" y=\"186\" text-anchor=\"middle\">" + std::to_string(degrees) + "°</text>";
        }
        const double step = std::max(0.5, std::ceil(highest_ / 4 * 2) / 2);
        for (double score = 0; score <= highest_ * 1.08; score += step) {
            const std::string at = number(y(score));
            text += "<line class=\"grid\" x1=\"40\" x2=\"470\" y1=\"" + at + "\" y2=\"" + at +
                    "\"/><text x=\"34\" y=\"" + number(y(score) + 4) + "\" text-anchor=\"end\">" +
                    steps::with_digits("%g", score) + "</text>";
        }
        return text;
    }

    std::string curves(const steps::FanCurves& curves, const std::string& name) const {
        return "<g class=\"" + name + "\"><g class=\"coarse\">" + curve(curves.coarse, name) +
               "</g><g class=\"fine\">" + curve(curves.fine, name) + "</g></g>";
    }

    // A line at an angle with words beside it.
    std::string mark(const char* name, double degrees, const std::string& words) const {
        const std::string at = number(x(degrees));
        const bool right = degrees < 0;
        return std::string("<g class=\"") + name + "\"><line x1=\"" + at + "\" x2=\"" + at +
               "\" y1=\"14\" y2=\"170\"/><text x=\"" + number(x(degrees) + (right ? 6 : -6)) +
               "\" y=\"24\" text-anchor=\"" + (right ? "start" : "end") + "\">" + words +
               "</text></g>";
    }

  private:
    std::string curve(const std::vector<steps::FanPoint>& points, const std::string& name) const {
        std::string path, dots;
        for (const steps::FanPoint& point : points) {
            const std::string px = number(x(point.degrees)), py = number(y(point.score));
            path += px + "," + py + " ";
            dots += "<circle cx=\"" + px + "\" cy=\"" + py + "\" r=\"2\"><title>" + name + ", " +
                    steps::with_digits("%.2f", point.degrees) +
                    "°: " + steps::with_digits("%.2f", point.score) + "</title></circle>";
        }
        return "<polyline points=\"" + path + "\"/>" + dots;
    }
    static std::string number(double value) { return steps::with_digits("%.1f", value); }

    double highest_ = 1;
};

using Peak = std::optional<steps::FanPoint>;

Peak highest_of(const steps::FanCurves& curves) {
    const auto& points = curves.fine.empty() ? curves.coarse : curves.fine;
    const auto highest = std::max_element(
        points.begin(), points.end(), [](const steps::FanPoint& one, const steps::FanPoint& other) {
            return one.score < other.score;
        });
    return highest == points.end() ? Peak() : *highest;
}

// The peak that decided, which is the one as high as the confidence says.
Peak decisive_peak(const steps::SkewFan& fan, double confidence) {
    const Peak lines = highest_of(fan.lines), stems = highest_of(fan.stems);
    if (!lines || !stems) return lines ? lines : stems;
    const bool of_stems = std::abs(stems->score - confidence) < std::abs(lines->score - confidence);
    return of_stems ? stems : lines;
}

// The search and its words on a peak round differently.
constexpr double kSameDegrees = 0.15;

// The last word of the step that looked for the skew.
std::string outcome_of_deskew(const PageRecord& record) {
    for (const steps::StepNote& step : record.steps) {
        if (step.name == "deskew") return step.outcome.why;
    }
    return "";
}

// What the fan came to: the mark in the drawing, and its words.
struct Finding {
    std::string mark, words;
};

Finding finding_of(const Plot& plot, const steps::SkewFan& fan, const PageRecord& record) {
    const Peak peak = decisive_peak(fan, record.confidence.value_or(0));
    if (record.skew) {
        const double degrees = record.skew->degrees();
        if (!peak || std::abs(peak->degrees - degrees) <= kSameDegrees) {
            const std::string text = degrees_text(degrees);
            return {plot.mark("found", degrees, text), "Skew " + text + "."};
        }
    }
    if (!peak) return {};
    const std::string text = degrees_text(peak->degrees);
    return {plot.mark("refused", peak->degrees, text + ", not followed"),
            "The peak at " + text + " was not followed: " + outcome_of_deskew(record) + "."};
}

}  // namespace

std::string fan_markup(const steps::SkewFan& fan, const PageRecord& record) {
    const Plot plot(fan);
    const Finding finding = finding_of(plot, fan, record);
    const std::string words = escaped(finding.words);
    return "<figure class=\"fan\"><h2>Skew</h2><svg viewBox=\"0 0 480 194\" role=\"img\" "
           "aria-label=\"How well the ink lines up along each angle. " +
           words + "\">" + plot.axes() + plot.curves(fan.stems, "stems") +
           plot.curves(fan.lines, "lines") + finding.mark + "</svg><figcaption>" + words +
           " The curves show how well the ink lines up along each angle: <span class=\"key "
           "lines\">text lines</span> <span class=\"key "
           "stems\">stems</span>.</figcaption></figure>\n";
}

}  // namespace tool::report
