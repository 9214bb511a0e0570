// The report to look at: one HTML page with all that it needs inside.
//
// Use: (page | fail)* finish: page() for each page and fail() for each input that failed, in order;
// finish() gives the report its name. Pages are written as they come; what is kept of them are
// their figures. For one thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "files/file_error.h"
#include "files/output_file.h"
#include "report/figures_table.h"
#include "report/page_pictures.h"

namespace tool::report {

class HtmlReport {
  public:
    // Makes the folder when it is missing. Throws FileError, also when it holds a report that may
    // not be replaced or that is one of the inputs.
    HtmlReport(const std::string& folder, const std::vector<std::string>& inputs, bool overwrite);

    void page(const std::string& input, std::size_t page_count, const PageRecord& record,
              const PagePictures& pictures);
    void fail(const std::string& input, const std::string& what);
    // Why the report could not be written, if it could not.
    std::optional<files::FileError> finish();

  private:
    std::string next_anchor() const;
    // The first failure ends the report, but not the run.
    void write(const std::string& text);

    files::OutputFile file_;
    std::vector<FigureRow> rows_;
    std::optional<files::FileError> error_;
};

}  // namespace tool::report
