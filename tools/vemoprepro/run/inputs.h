// The files that the names on the command line stand for.
#pragma once

#include <string>
#include <vector>

#include "run/options.h"

namespace tool::run {

struct InputName {
    std::string path;  // "-" is standard input
    // Its folder below the one on the command line, "" or "letters/1901/": its outputs go to the
    // same folder below the one for outputs.
    std::string below;
    std::string error;  // why nothing can be read there; empty: it can
};

struct InputList {
    std::vector<InputName> files;
    bool has_folder = false;         // a folder is among the names
    std::vector<std::string> notes;  // what was left out, to be told
};

// A folder stands for its image files, in natural order (natural_order.h); with -r then for those
// of its folders. An image file is told by its name's extension: a damaged one must not go
// unnoticed. Hidden files and folders, links to folders, the folders of the run's own outputs and
// report and those of earlier reports are left out. Throws UsageError when one of the run's own is
// the named folder itself.
InputList list_inputs(const Options& options);

}  // namespace tool::run
