// Takes the finished pages, writes them and reports them.
//
// Use: deliver() every page once, in the order of the inputs and of their pages. For one thread.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "files/page_writer.h"
#include "report/html_report.h"
#include "report/page_pictures.h"
#include "run/console.h"
#include "run/input_feeder.h"

namespace tool::run {

struct PageResult {
    std::shared_ptr<Input> input;
    std::size_t page = 0;
    Page data;
    std::optional<Page> kept;
    report::PageRecord record;
    std::optional<report::PagePictures> pictures;  // for the report to look at
    std::optional<files::FileError> error;
    std::string existing;  // as in PageTask
};

// Pages that go into one file, or into a file each. Use: append* finish, then publish the files.
class OutputSeries {
  public:
    OutputSeries(files::OutputFormat format, bool overwrite)
        : format_(format), overwrite_(overwrite) {}

    // name: of the file; the same one again goes on with it.
    void append(const std::string& name, Page page);
    void finish();
    const std::vector<std::unique_ptr<files::OutputFile>>& files() const { return files_; }

  private:
    files::OutputFormat format_;
    bool overwrite_;
    std::vector<std::unique_ptr<files::OutputFile>> files_;
    std::unique_ptr<files::PageWriter> writer_;  // of the last file
};

// The output files of one input: all of them appear, or none. Use: append* publish.
class OutputSet {
  public:
    OutputSet(const OutputNames& names, bool overwrite)
        : names_(names), pages_(names.format, overwrite), kept_(names.format, overwrite) {}

    void append(std::size_t index, Page page, std::optional<Page> kept);
    void publish();

  private:
    const OutputNames& names_;
    OutputSeries pages_;
    OutputSeries kept_;
};

class OutputCollector {
  public:
    // pictures: the report to look at; may be null.
    OutputCollector(const Options& options, Console& console, report::HtmlReport* pictures)
        : overwrite_(options.overwrite), console_(console), pictures_(pictures) {}

    void deliver(PageResult& result);
    // In place of all further calls: drops the input that is not complete, and ends the report if
    // there is anything in it.
    void interrupt();

  private:
    void write(PageResult& result);
    void fail(PageResult& result, const files::FileError& error);

    bool overwrite_;
    Console& console_;
    report::HtmlReport* pictures_;
    bool reported_ = false;           // something is in the report
    std::shared_ptr<Input> failed_;   // the last input that failed, already reported
    std::shared_ptr<Input> current_;  // the input that is not complete yet; may be null
    std::optional<OutputSet> outputs_;
};

}  // namespace tool::run
