// The public names of the callbacks are the types that the families know them by.
#pragma once

#include <type_traits>

#include "common/callbacks.h"
#include "vemoprepro/prepro.h"

static_assert(std::is_same_v<prepro_row_reader, common::RowReader>);
static_assert(std::is_same_v<prepro_dropout, common::DropoutFunction>);
static_assert(std::is_same_v<prepro_component_rule, common::ComponentRule>);
static_assert(std::is_same_v<prepro_progress, common::ProgressCallback>);
