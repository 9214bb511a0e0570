// The report to look at: an index of all pages, and for each page a file that shows it, with its
// pictures at full size beside it.
//
// Use: (page | fail)* finish: page() for each page and fail() for each input that failed, in order;
// finish() at any time gives a report of what there is. Pages are written as they come; what is
// kept of them are their figures. For one thread.
//
// Keep true: a file that is there is complete, and the index, which is written last, links to
// nothing that is not.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "files/file_error.h"
#include "report/figures_table.h"
#include "report/page_pictures.h"
#include "report/report_folder.h"

namespace tool::report {

class HtmlReport {
  public:
    // Makes the folder when it is missing. Throws FileError, also when it holds a report that may
    // not be replaced or that is one of the inputs.
    HtmlReport(const std::string& folder, const std::vector<std::string>& inputs, bool overwrite);

    // The first failure ends the report, but not the run.
    void page(const std::string& input, std::size_t page_count, const PageRecord& record,
              const PagePictures& pictures);
    void fail(const std::string& input, const std::string& what);
    // Why the report could not be written, if it could not.
    std::optional<files::FileError> finish();

  private:
    // A page's file waits until it is known whether another one follows.
    struct WaitingPage {
        std::string title, content;
    };

    void write_page(const std::string& input, std::size_t page_count, const PageRecord& record,
                    const PagePictures& pictures);
    void write_waiting_page(bool another_follows);

    // "; not in this report: 7 files" when finish() comes before the last one.
    std::string missing_text() const;
    void count_input(const std::string& input, std::size_t pages_to_come);

    ReportFolder folder_;
    std::string title_;
    std::size_t inputs_to_come_;
    std::size_t pages_to_come_ = 0;  // of the last input
    std::vector<FigureRow> rows_;
    std::size_t page_count_ = 0;
    std::optional<WaitingPage> waiting_;
    std::optional<files::FileError> error_;
};

}  // namespace tool::report
