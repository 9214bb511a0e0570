// Every page is decoded, one at a time: what kind it is depends on its pixels, and a damaged file
// is to be found out here rather than in the middle of a run.
#include "run/info.h"

#include <cstdio>

#include "files/file_error.h"
#include "files/image_file.h"
#include "run/messages.h"
#include "run/report.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

Json page_json(const PageRecord& record, int quarter_turns) {
    Json json = {{"page", record.number}, {"kind", name_of(record.kind)},
                 {"width", record.width}, {"height", record.height},
                 {"dpi", nullptr},        {"turn", quarter_turns * 90}};
    if (record.dpi.x > 0) json["dpi"] = {record.dpi.x, record.dpi.y};
    return json;
}

void print_page(const Options& options, const PageRecord& record, int quarter_turns) {
    if (options.json || options.quiet) return;
    std::printf("  page %zu: %s", record.number, describe(record).c_str());
    if (quarter_turns != 0) std::printf(", to be turned %d degrees clockwise", quarter_turns * 90);
    std::printf("\n");
}

void print_file(const Options& options, const std::string& name, Json& json) {
    const ImageFile file(name);
    json["format"] = name_of(file.format());
    if (!options.json && !options.quiet) {
        std::printf("%s: %s, %zu page%s\n", name.c_str(), name_of(file.format()), file.page_count(),
                    file.page_count() == 1 ? "" : "s");
    }
    for (std::size_t index = 0; index < file.page_count(); ++index) {
        const Page page = file.read_page(index);
        PageRecord record;
        record.number = index + 1;
        describe_source(record, page);
        print_page(options, record, page.quarter_turns);
        json["pages"].push_back(page_json(record, page.quarter_turns));
    }
}

}  // namespace

int print_info(const Options& options) {
    int status = kExitDone;
    Json files = Json::array();
    for (const std::string& name : options.inputs) {
        files.push_back(file_json(name, ""));
        try {
            print_file(options, name, files.back());
        } catch (const FileError& error) {
            std::fflush(stdout);
            complain(error.file(), error.what());
            files.back()["error"] = error.what();
            status = kExitFailed;
        }
    }
    if (options.json) print_json(stdout, files);
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
    complain("standard output", "cannot be written");
    return kExitFailed;
}

}  // namespace tool
