// Runs a check once per instruction set that this machine and this build have, and restores the
// choice.
#pragma once

#include <gtest/gtest.h>
#include <hwy/highway.h>
#include <hwy/targets.h>

namespace support {

template <class Check>
void on_every_target(Check&& check) {
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::GetChosenTarget().Update(target);
        SCOPED_TRACE(hwy::TargetName(target));
        check();
    }
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

}  // namespace support
