// Every page is decoded, one at a time: what kind it is depends on its pixels, and a damaged file
// is to be found out here rather than in the middle of a run.
#include "run/info.h"

#include <cstdio>
#include <exception>
#include <mutex>
#include <string>
#include <utility>

#include "files/image_file.h"
#include "files/unfinished.h"
#include "page/counted.h"
#include "run/inputs.h"
#include "run/messages.h"
#include "run/record_json.h"
#include "run/shown_text.h"

namespace tool::run {
namespace {

Json page_json(std::size_t number, const PageShape& shape, int quarter_turns) {
    const Json dpi = shape.dpi.x > 0 ? Json{shape.dpi.x, shape.dpi.y} : Json(nullptr);
    return {{"page", number},       {"kind", name_of(shape.kind)},
            {"width", shape.width}, {"height", shape.height},
            {"dpi", dpi},           {"turn", quarter_turns * 90}};
}

void print_page(std::size_t number, const PageShape& shape, int quarter_turns) {
    std::printf("  page %zu: %s", number, describe(shape).c_str());
    if (quarter_turns != 0) std::printf(", to be turned %d degrees clockwise", quarter_turns * 90);
    std::printf("\n");
}

void print_file(const std::string& name, bool words, Json& json) {
    const files::ImageFile file(name);
    json["format"] = name_of(file.format());
    if (words) {
        std::printf("%s: %s, %s\n", shown(name).c_str(), name_of(file.format()),
                    counted(file.page_count(), "page").c_str());
    }
    for (std::size_t index = 0; index < file.page_count(); ++index) {
        const Page page = file.read_page(index);
        if (words) print_page(index + 1, shape_of(page), page.quarter_turns);
        json["pages"].push_back(page_json(index + 1, shape_of(page), page.quarter_turns));
    }
}

// False, with a complaint, when it cannot be read.
bool read_file(const InputName& input, bool words, Json& json) {
    try {
        if (!input.error.empty()) throw files::FileError(input.path, input.error);
        print_file(input.path, words, json);
        return true;
    } catch (const std::exception& error) {
        std::fflush(stdout);
        complain(input.path, what_failed(error));
        json["error"] = what_failed(error);
        return false;
    }
}

}  // namespace

int print_info(const Options& options) {
    const bool words = !options.json && !options.quiet;
    int status = kExitDone;
    Json files = Json::array();
    const auto print_record = [&] {
        if (options.json) std::fputs(document_text(files).c_str(), stdout);
        return flush_output();
    };
    const InputList inputs = list_inputs(options);
    if (words) {
        for (const std::string& note : inputs.notes) std::printf("%s\n", shown(note).c_str());
    }
    // One of both has the last word: the end of the run or a signal.
    std::mutex speaking;
    bool finished = false;
    const files::LastWords last_words([&] {
        speaking.lock();  // for good
        if (finished) return speaking.unlock();
        complain("interrupted: " + std::to_string(files.size()) + " of " +
                 counted(inputs.files.size(), "file") + " read");
        print_record();
    });
    for (const InputName& input : inputs.files) {
        Json entry = file_json(input.path, "");
        if (!read_file(input, words, entry)) status = kExitFailed;
        const std::lock_guard guard(speaking);
        files.push_back(std::move(entry));
    }
    const std::lock_guard guard(speaking);
    finished = true;
    return print_record() ? status : kExitFailed;
}

}  // namespace tool::run
