#pragma once

#include "host/clouds/PointMask.h"
#include "host/objects/BrushObject.h"

#include "cadmer/LabelSet.h"
#include "rethold/Pointer.h"
#include "sorbine/VObject.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace Zamt::Host {

/// What one editor selected last.
struct ClassChange {
  std::string editor;
  std::uint8_t target = 0;
  std::string targetName;
  std::uint64_t considered = 0;          ///< Points looked at.
  std::uint64_t modified = 0;            ///< Points that the class of changes, or would.
  std::array<std::uint64_t, 256> from{}; ///< Those by the class they come from.
};

/// Puts the points of a brush into a class of a label set. "select" works out which points that changes and
/// counts them; "applySelection" changes them, in memory.
class MaskedLabels : public VObject {
public:
  /// Takes over the classes that the data brings, and those that other editors of the scene are about to add.
  void initialize() override;

  /// Forgets what was selected.
  void unselectAll();

  /// Whether a selection was worked out since the last `unselectAll`.
  bool selected() const { return !considered_.get().empty() && problem_.get().empty(); }

  /// What was selected last.
  const ClassChange& change() const { return change_; }

  /// All editors of the scene, in the order in which they were made.
  static std::vector<Rethold::StrongPtr<MaskedLabels>> all();

private:
  using BrushPtr = Rethold::StrongPtr<Brush>;
  using FieldPtr = Rethold::StrongPtr<FieldHandle>;

  void select();
  void applySelection();
  bool target(const Grid& grid, std::uint8_t& number, std::string& problem) const;
  bool countChanges(const Grid& grid, const PointMask& kept, std::string& problem);
  void fail(const std::string& problem);

  VInput<BrushPtr> brush_ =
      input<BrushPtr>("brush", "The points to change; all of them if nothing is attached.");
  VInput<LabelSet> labels_ = input<LabelSet>(
      "labels", "The classes: which may be changed (editable), and which to change to (Assign).");
  VInput<FieldPtr> labelfield_ = input<FieldPtr>("labelfield", "The field that holds the class of a point.");
  VInput<std::string> maskfield_ =
      input<std::string>("maskfield", "The field under which the selection can be displayed.", "mask");
  Rethold::StrongPtr<VSlot> unselectAll_ =
      action("unselectAll", "Forgets what was selected.", [this] { unselectAll(); });
  Rethold::StrongPtr<VSlot> select_ =
      action("select", "Works out which points the change concerns, and counts them.", [this] { select(); });
  Rethold::StrongPtr<VSlot> applySelection_ =
      action("applySelection", "Puts the selected points into the class.", [this] { applySelection(); });
  VOutput<std::string> modified_ =
      output<std::string>("modified", "How many points change; empty before they were counted.");
  VOutput<std::string> considered_ =
      output<std::string>("considered", "How many points were looked at; empty before that.");
  VOutput<std::string> problem_ =
      output<std::string>("problem", "Why the selection could not be worked out; empty if it could.");
  VOutput<std::string> status_ = output<std::string>("status", "What happened last.");

  Rethold::StrongPtr<Grid> grid_; ///< What the mask belongs to.
  PointMask mask_;
  ClassChange change_;
};

/// Registers the editor.
void registerMaskedLabels();

} // namespace Zamt::Host
