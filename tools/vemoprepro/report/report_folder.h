// The folder of a report: index.html, and the files of the pages in pages/.
//
// Use: write() each file. One that is there is complete: it is written aside and renamed.
#pragma once

#include <string>
#include <vector>

namespace tool::report {

class ReportFolder {
  public:
    // Makes the folder when it is missing. Throws FileError, also when it holds a report that may
    // not be replaced or that has inputs among its files. A report that may be replaced is gone
    // afterwards, so that no page of it is left among the new ones.
    ReportFolder(const std::string& folder, const std::vector<std::string>& inputs, bool overwrite);

    // Throws FileError.
    void write(const std::string& name, const std::string& bytes) const;

  private:
    std::string folder_;  // with a slash at its end
};

constexpr const char* kIndexName = "index.html";
constexpr const char* kPagesFolder = "pages/";

// "0012": how the names of a page's files begin.
std::string page_stem(std::size_t number);

}  // namespace tool::report
