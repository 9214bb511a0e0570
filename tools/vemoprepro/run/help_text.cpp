#include "run/help_text.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>

namespace tool::run {
namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  vemoprepro clean scan.jpg -o page.tif           straight bitonal page, Group 4\n"
    "  vemoprepro clean book.tif -o book-clean.tif     all pages of a file, in order\n"
    "  vemoprepro clean scans -o cleaned               all images of a folder\n"
    "  vemoprepro clean scan.jpg -o page.tif --for ocr what recognition reads best\n"
    "  vemoprepro rotate 90 page.png -o turned.png     a quarter turn clockwise\n"
    "  vemoprepro info scans                           what the files hold\n"
    "\n"
    "Exit status: 0 all done, 1 a file failed (the others are done), 2 wrong usage.\n"
    "'vemoprepro COMMAND --help' lists the options of a command.";

const std::map<std::string, const char*>& examples() {
    static const std::map<std::string, const char*> kOfCommands = {
        {"clean",
         "Examples:\n"
         "  vemoprepro clean scan.jpg -o page.tif            straight bitonal page, Group 4\n"
         "  vemoprepro clean scan.jpg -o page.tif --for ocr  what recognition reads best\n"
         "  vemoprepro clean scans -r -o cleaned             a folder and all below it\n"
         "  vemoprepro clean scans -o cleaned --skip-existing  what is not done yet\n"
         "  vemoprepro clean scans -o cleaned --report look  look at before and after in a "
         "browser\n"
         "  vemoprepro clean - -o - <a.png >a.tif            as a filter\n"
         "  vemoprepro clean a.tif -o b.tif --json >a.json   with a record of what was found\n"
         "  vemoprepro clean c.tif -o d.tif --apply a.json   the same skews and thresholds again"},
        {"binarize", "Example: vemoprepro binarize scan.jpg -o page.png --threshold 120"},
        {"deskew", "Example: vemoprepro deskew scan.png -o straight.png"},
        {"crop", "Example: vemoprepro crop scan.png -o framed.png"},
        {"rotate",
         "Examples:\n"
         "  vemoprepro rotate 90 scan.png -o turned.png                     a quarter turn\n"
         "  vemoprepro rotate -2.5 scan.png -o turned.png --background border"},
        {"perspective",
         "Examples:\n"
         "  vemoprepro perspective photo.jpg -o page.png\n"
         "  vemoprepro perspective photo.jpg -o page.png --corners 40,60 980,20 1010,1390 25,1350"},
        {"scale",
         "Examples:\n"
         "  vemoprepro scale scan.png -o half.png --factor 0.5\n"
         "  vemoprepro scale scan.png -o page.png --dpi 300\n"
         "  vemoprepro scale scan.png -o thumb.png --size 170x240 --filter bilinear"},
        {"despeckle", "Example: vemoprepro despeckle fax.tif -o quiet.tif --keep-near 4"},
        {"unline", "Example: vemoprepro unline form.tif -o words.tif --lines horizontal"},
        {"underlines", "Example: vemoprepro underlines form.tif -o lines.tif"},
        {"textmask", "Example: vemoprepro textmask page.tif -o text.tif"},
        {"info", "Example: vemoprepro info scans -r"}};
    return kOfCommands;
}

// "TEXT:{tiff,png,pbm}" becomes "tiff|png|pbm", "INT:INT in [1 - 1024]" becomes "N".
std::string value_name(const std::string& type) {
    const std::size_t choices = type.find('{');
    if (type.compare(0, 4, "TEXT") == 0 && choices != std::string::npos) {
        std::string names = type.substr(choices + 1, type.find('}') - choices - 1);
        std::replace(names.begin(), names.end(), ',', '|');
        return names;
    }
    const std::string name = type.substr(0, type.find(':'));
    return name == "INT" || name == "UINT" || name == "FLOAT" ? "N" : name;
}

// The names of an option and of its value, without limits and relatives: what is not allowed is
// said when somebody asks for it.
class HelpLayout : public CLI::Formatter {
  public:
    HelpLayout() { column_width(32); }

    std::string make_option_opts(const CLI::Option* option) const override {
        if (option->get_positional()) return option->get_expected_max() > 1 ? " ..." : "";
        if (option->get_expected_max() == 0) return "";
        return " " + value_name(option->get_type_name());
    }
};

}  // namespace

void lay_out_help(CLI::App& app) {
    app.formatter(std::make_shared<HelpLayout>());
    app.footer(kExamples);
}

void add_examples(CLI::App& command) {
    command.footer(examples().at(command.get_name()));
}

}  // namespace tool::run
