#include "frame/version.h"

#include "source_revision.h"  // written by the build: VEMOPREPRO_SOURCE_REVISION, 40 digits

namespace frame {

const char kVersionNumber[] = "version of library: 16.5.1.12";
const char kBranchName[] = "git branch: 16.5.1.xx";
const char kSourceRevision[] = "git sha: " VEMOPREPRO_SOURCE_REVISION;

static_assert(sizeof(kSourceRevision) == sizeof("git sha: ") + 40);

}  // namespace frame
