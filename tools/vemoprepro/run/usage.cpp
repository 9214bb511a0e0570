#include "run/usage.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <numeric>

#include "run/messages.h"
#include "run/shown_text.h"

namespace tool::run {
namespace {

// Longer ones are no mistyped words; the time grows with the product of the lengths.
constexpr std::size_t kLongestWord = 64;

constexpr const char* kShortHelp =
    "vemoprepro cleans up scanned pages: black and white, straight, ready to read.\n"
    "\n"
    "  vemoprepro clean scan.jpg -o page.tif             one page, or all pages of a file\n"
    "  vemoprepro clean scans -o cleaned                 all images of a folder\n"
    "  vemoprepro clean scan.jpg -o page.tif --for ocr   for text recognition\n"
    "  vemoprepro info scan.jpg                          what a file holds\n"
    "\n";

// By the letters that are left out, put in, replaced or swapped with the next (Damerau 1964, each
// place edited once).
std::size_t edits_between(const std::string& one, const std::string& other) {
    std::vector<std::size_t> before_last, last, row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t y = 1; y <= one.size(); ++y) {
        before_last = std::move(last);
        last = row;
        row[0] = y;
        for (std::size_t x = 1; x <= other.size(); ++x) {
            const bool same = one[y - 1] == other[x - 1];
            row[x] = std::min({last[x] + 1, row[x - 1] + 1, last[x - 1] + (same ? 0 : 1)});
            const bool swapped =
                y > 1 && x > 1 && one[y - 1] == other[x - 2] && one[y - 2] == other[x - 1];
            if (swapped) row[x] = std::min(row[x], before_last[x - 2] + 1);
        }
    }
    return row.back();
}

std::string listed(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
    return text;
}

// What a word is that stands in the place of a command.
std::string why_no_command(const std::string& word, const std::vector<std::string>& commands) {
    const std::string name = shortened(word, 200);
    std::string quoted = name;
    quoted.insert(quoted.begin(), '\'');
    quoted.push_back('\'');
    const std::string command = nearest_word(word, commands);
    struct stat status {};
    const bool there = word == "-" || stat(word.c_str(), &status) == 0;
    if (there || (command.empty() && word.find_first_of("./") != std::string::npos)) {
        return "the command is missing before " + quoted + "; to clean it: vemoprepro clean " +
               name + " -o OUT";
    }
    std::vector<std::string> starts = commands;
    starts.insert(starts.end(), {"--help", "--version"});
    const std::string meant = did_you_mean(word, starts);
    if (word.size() > 1 && word[0] == '-') {
        return "the command comes first, before " + quoted + meant;
    }
    return "there is no command " + quoted + meant;
}

}  // namespace

std::string nearest_word(const std::string& typed, const std::vector<std::string>& words) {
    if (typed.size() > kLongestWord) return "";
    std::string nearest;
    std::size_t fewest = typed.size() / 3 + 1;
    for (const std::string& word : words) {
        // The start of a word stands for it as one edit does.
        const bool begun = typed.size() >= 3 && word.compare(0, typed.size(), typed) == 0;
        const std::size_t edits = begun ? 1 : edits_between(typed, word);
        if (edits < fewest || (edits == fewest && nearest.empty())) {
            fewest = edits;
            nearest = word;
        }
    }
    return nearest;
}

std::string did_you_mean(const std::string& typed, const std::vector<std::string>& words) {
    const std::string word = nearest_word(typed, words);
    return word.empty() ? "" : "; did you mean '" + word + "'?";
}

void explain_commands(const std::string& first, const std::vector<std::string>& commands) {
    if (!first.empty()) {
        complain(why_no_command(first, commands));
        std::fputs("\n", error_stream());
    }
    std::fprintf(error_stream(),
                 "%sCommands: %s.\n'vemoprepro --help' says what they do, 'vemoprepro clean "
                 "--help' lists the options of one.\n",
                 kShortHelp, listed(commands).c_str());
    std::fflush(error_stream());
}

void explain_usage(const std::string& command, const std::string& what) {
    complain(shortened(what, 1000));
    const std::string name = command.empty() ? "" : command + " ";
    std::fprintf(error_stream(), "Try 'vemoprepro %s--help'.\n", name.c_str());
    std::fflush(error_stream());
}

}  // namespace tool::run
