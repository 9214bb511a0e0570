#include "report/fan_plot.h"

#include <algorithm>
#include <cmath>

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

    std::string found(double degrees) const {
        const std::string at = number(x(degrees));
        const bool right = degrees < 4;
        return "<g class=\"found\"><line x1=\"" + at + "\" x2=\"" + at +
               "\" y1=\"14\" y2=\"170\"/><text x=\"" + number(x(degrees) + (right ? 6 : -6)) +
               "\" y=\"24\" text-anchor=\"" + (right ? "start" : "end") + "\">" +
               steps::with_digits("%.2f", degrees) + "°</text></g>";
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

}  // namespace

std::string fan_markup(const steps::SkewFan& fan, const PageRecord& record) {
    const Plot plot(fan);
    const double degrees = record.skew ? record.skew->degrees() : 0;
    std::string text =
        "<figure class=\"fan\"><h2>Skew</h2><svg viewBox=\"0 0 480 194\" role=\"img\" "
        "aria-label=\"Alignment of the ink over the candidate angles; found: " +
        steps::with_digits("%.2f", degrees) + " degrees\">" + plot.axes() +
        plot.curves(fan.stems, "stems") + plot.curves(fan.lines, "lines");
    if (record.skew) text += plot.found(degrees);
    return text +
           "</svg><figcaption>How well the ink lines up along each angle, in multiples of the "
           "worst, and closer around the best: <span class=\"key lines\">text lines</span> <span "
           "class=\"key stems\">stems"
           "</span>. Confidence " +
           steps::with_digits("%.2f", record.confidence.value_or(0)) + ".</figcaption></figure>\n";
}

}  // namespace tool::report
