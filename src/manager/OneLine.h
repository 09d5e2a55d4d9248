#pragma once

#include "common/OneLine.h"

namespace tarvo::manager {

using common::excerpt;
using common::onOneLine;

} // namespace tarvo::manager
