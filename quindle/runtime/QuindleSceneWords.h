#pragma once

#include <string>

/// @file
/// The words by which the library speaks with a scene, beside the creators and slots of the conditions, which
/// stand in their catalogue. A scene that offers what Quindles do has objects, slots and actions of these
/// names.
namespace Zamt::sceneWords {

/// What the names of all objects begin with that Quindles make for themselves.
inline constexpr const char* ownPrefix = "Quindle_";

/// What filters have beside the slots of their condition: the points to choose from, and whether to keep the
/// others ("true").
/// @{
inline constexpr const char* brushSlot = "brush";
inline constexpr const char* invertSlot = "invert";
/// @}

/// The filter that joins two branches of an "or", and where it reads the second one.
/// @{
inline constexpr const char* joiningCreator = "Selection/BrushFilterAny";
inline constexpr const char* otherBrushSlot = "otherbrush";
/// @}

/// The editor of a "classify into": its inputs beside the brush, its actions in the order in which they are
/// fired, and what it publishes once "select" was fired.
/// @{
inline constexpr const char* editorCreator = "Edit/MaskedLabels";
inline constexpr const char* labelsSlot = "labels";
inline constexpr const char* labelFieldSlot = "labelfield";
inline constexpr const char* maskFieldSlot = "maskfield";
inline constexpr const char* unselectAllAction = "unselectAll";
inline constexpr const char* selectAction = "select";
inline constexpr const char* applyAction = "applySelection";
inline constexpr const char* modifiedSlot = "modified";
inline constexpr const char* consideredSlot = "considered";
inline constexpr const char* problemSlot = "problem";
/// @}

/// In the label set of an editor: the flag of classes that may be changed, and the selection that holds the
/// class to put points into.
/// @{
inline constexpr const char* editableFlag = "editable";
inline constexpr const char* assignSelection = "Assign";
/// @}

/// What any object tells of its state.
inline constexpr const char* statusSlot = "status";

/// A field of a cloud as an object: its inputs, and its output.
/// @{
inline constexpr const char* fieldCreator = "Lattix/Field";
inline constexpr const char* gridSlot = "grid";
inline constexpr const char* fieldNameSlot = "fieldname";
inline constexpr const char* fieldSlot = "field";
/// @}

/// The fields that are taken where nothing names one: that of the class, and that of an editor's selection.
/// @{
inline constexpr const char* usualClassField = "Classification";
inline constexpr const char* usualMaskField = "mask";
/// @}

/// How `fieldNameSlot` spells a field.
inline std::string fieldName(const std::string& field) { return field + '@' + field; }

/// What a brush publishes, what it is called where the host names none, and the one that is made where there
/// is none: it reads what publishes points drawn on the screen, whose mode is set to drawing a brush.
/// @{
inline constexpr const char* brushKind = "Brush";
inline constexpr const char* usualBrush = "TheBrush";
inline constexpr const char* madeBrush = "QuindleBrush";
inline constexpr const char* madeBrushCreator = "Compute/BrushFromScreenPoints";
inline constexpr const char* screenPointsSlot = "screenpoints";
inline constexpr const char* screenPointsKind = "PointDataChunk";
inline constexpr const char* modeSlot = "mode";
inline constexpr const char* brushMode = "brush";
/// @}

/// What the creators of all displays begin with, and where a display takes the points to show as selected.
/// @{
inline constexpr const char* displayPrefix = "Display/";
inline constexpr const char* maskSlot = "mask";
/// @}

} // namespace Zamt::sceneWords
