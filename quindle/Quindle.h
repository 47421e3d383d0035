#pragma once

/// @file
/// Everything that a host of Quindles includes.

#include "quindle/check/checkQuindle.h"
#include "quindle/core/Diag.h"
#include "quindle/core/QuindleDocument.h"
#include "quindle/library/QuindleFiles.h"
#include "quindle/library/QuindleLibrary.h"
#include "quindle/library/QuindleShortcuts.h"
#include "quindle/plan/QuindleOperation.h"
#include "quindle/plan/QuindlePlanNode.h"
#include "quindle/plan/compileClassify.h"
#include "quindle/plan/compileSelect.h"
#include "quindle/plan/evaluateQuindleExpr.h"
#include "quindle/reference/QuindleReference.h"
#include "quindle/reference/QuindleRegistry.h"
#include "quindle/reference/explainQuindle.h"
#include "quindle/runtime/QuindleOps.h"
#include "quindle/runtime/QuindleRuntime.h"
#include "quindle/scene/TolvenQuindleOps.h"
#include "quindle/text/QuindleSpans.h"
#include "quindle/text/formatQuindle.h"
#include "quindle/text/parseQuindle.h"
#include "quindle/text/writeQuindle.h"
