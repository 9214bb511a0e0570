// The three version texts, in read-only data for the life of the process.
#pragma once

namespace frame {

extern const char kVersionNumber[];
extern const char kBranchName[];
extern const char kSourceRevision[];

}  // namespace frame
