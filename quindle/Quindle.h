#pragma once

/// @file
/// Everything that a host of Quindles includes.
///
/// When memory runs out, every function that takes a Diag returns what it returns on failure, with an error
/// as far as memory allows. Functions that only return a value, and copies of records, let std::bad_alloc
/// through. Nothing that destroys or moves a record takes memory. What a scene or a resolver throws passes
/// through unchanged, but for std::bad_alloc, which counts as memory that ran out here.

#include "quindle/check/adviseQuindle.h"
#include "quindle/check/checkQuindle.h"
#include "quindle/core/Diag.h"
#include "quindle/core/PointVocabulary.h"
#include "quindle/core/QuindleDocument.h"
#include "quindle/core/QuindleNodes.h"
#include "quindle/core/QuindleParamTypes.h"
#include "quindle/library/QuindleFiles.h"
#include "quindle/library/QuindleLibrary.h"
#include "quindle/library/QuindleShortcuts.h"
#include "quindle/library/entryNames.h"
#include "quindle/library/keysOf.h"
#include "quindle/plan/QuindleOperation.h"
#include "quindle/plan/QuindlePlanNode.h"
#include "quindle/plan/compileClassify.h"
#include "quindle/plan/compileSelect.h"
#include "quindle/plan/conditionCosts.h"
#include "quindle/plan/diagnoseQuindle.h"
#include "quindle/plan/evaluateQuindleExpr.h"
#include "quindle/plan/planQuindle.h"
#include "quindle/reference/QuindleReference.h"
#include "quindle/reference/QuindleRegistry.h"
#include "quindle/reference/explainQuindle.h"
#include "quindle/reference/maturity.h"
#include "quindle/runtime/QuindleOps.h"
#include "quindle/runtime/QuindleRuntime.h"
#include "quindle/runtime/QuindleSceneWords.h"
#include "quindle/scene/TolvenQuindleOps.h"
#include "quindle/text/QuindleSpans.h"
#include "quindle/text/formatQuindle.h"
#include "quindle/text/parseQuindle.h"
#include "quindle/text/writeQuindle.h"
