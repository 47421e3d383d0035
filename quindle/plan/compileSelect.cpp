#include "quindle/plan/compileSelect.h"

#include "quindle/core/Guarded.h"
#include "quindle/core/Refusals.h"
#include "quindle/plan/compileClassify.h"
#include "quindle/plan/compileIndexedSelect.h"
#include "quindle/runtime/QuindleSceneWords.h"

#include <algorithm>
#include <utility>

namespace Zamt {

namespace {

constexpr const char* joiningBase = "any";
constexpr const char* regionCondition = "inside";

using PlanKind = QuindlePlanNode::Kind;

/// What came of a node: the object at its end, which counts on failure too.
struct Compiled {
  bool ok;
  std::string out;
};

class SelectCompiler {
public:
  SelectCompiler(const ParamIndex& params, QuindleOps& ops, const std::string& prefix,
                 std::vector<QuindleBinding>& bindings, Diag& diag)
      : params_(params), ops_(ops), prefix_(prefix), bindings_(bindings), diag_(diag) {}

  Compiled compile(const QuindlePlanNode& root, const std::string& source) {
    Compiled last{true, source};
    enter(root, source, last);
    while (!stack_.empty()) {
      Frame& top = stack_.back();
      if (!top.stopped && top.next < top.node->children.size()) {
        const QuindlePlanNode& child = top.node->children[top.next++];
        // A copy: entering the child may move the frames.
        const std::string from = top.node->kind == PlanKind::And ? top.current : top.source;
        if (!enter(child, from, last)) continue;
      } else {
        last = {top.ok, std::move(top.current)};
        stack_.pop_back();
      }
      if (!stack_.empty()) fold(stack_.back(), last);
    }
    return last;
  }

private:
  /// An And or Or whose children are being compiled.
  struct Frame {
    const QuindlePlanNode* node;
    std::string source;
    std::string current; ///< End of the chain so far; of an Or, what joins the branches so far.
    std::size_t next;
    bool ok;
    bool hasBranch;
    bool stopped; ///< Nothing more is done for this node.
  };

  /// Compiles a node that has no children to wait for: true, with what came of it. Otherwise a frame is
  /// opened.
  bool enter(const QuindlePlanNode& node, const std::string& source, Compiled& compiled) {
    switch (node.kind) {
    case PlanKind::And: stack_.push_back({&node, source, source, 0, true, false, false}); return false;
    case PlanKind::Or:
      if (!node.children.empty()) {
        stack_.push_back({&node, source, {}, 0, true, false, false});
        return false;
      }
      diag_.at(Diag::Severity::Error, "An \"or\" with nothing in it.", {}, node.line, 0);
      break;
    case PlanKind::Condition:
      if (!node.operation) break;
      compiled = {true, source};
      if (!startsAtBrush(node)) compileCondition(node, source, compiled);
      return true;
    }
    compiled = {false, source};
    return true;
  }

  void fold(Frame& frame, Compiled& child) {
    if (!child.ok) {
      frame.ok = false;
    } else if (frame.node->kind == PlanKind::And || !frame.hasBranch) {
      frame.current = std::move(child.out);
      frame.hasBranch = true;
    } else {
      join(frame, child.out);
    }
  }

  void join(Frame& frame, const std::string& branch) {
    const std::string object = ops_.create(sceneWords::joiningCreator, objectName(joiningBase), diag_);
    if (object.empty()) {
      frame.ok = false;
      frame.stopped = true;
      frame.current = frame.source;
      return;
    }
    if (!ops_.connect(object, sceneWords::brushSlot, frame.current, "", diag_) ||
        !ops_.connect(object, sceneWords::otherBrushSlot, branch, "", diag_))
      frame.ok = false;
    frame.current = object;
  }

  /// Whether a condition asks for the region that the user paints, which is where the chain starts anyway.
  bool startsAtBrush(const QuindlePlanNode& node) const {
    if (node.operation->name != regionCondition || node.negated || node.arguments.empty()) return false;
    const QuindleExpr& region = node.arguments.front();
    if (region.kind != QuindleExpr::Kind::Reference) return false;
    const QuindleParam* const param = params_.find(region.name);
    return param && param->defaultSource == QuindleParam::DefaultSource::Brush;
  }

  void compileCondition(const QuindlePlanNode& node, const std::string& source, Compiled& compiled) {
    const QuindleOperation& operation = *node.operation;
    const std::string object = ops_.create(operation.creator, objectName(operation.name), diag_);
    if (object.empty() ||
        (!source.empty() && !ops_.connect(object, sceneWords::brushSlot, source, "", diag_))) {
      compiled.ok = false;
      return;
    }
    const auto set = [&](const std::string& slot, const std::string& value) {
      if (!ops_.setParam(object, slot, value, diag_)) compiled.ok = false;
    };
    const std::size_t count = std::min(operation.params.size(), node.arguments.size());
    for (std::size_t i = 0; i < count; ++i) {
      const QuindleExpr& argument = node.arguments[i];
      if (argument.kind == QuindleExpr::Kind::Literal)
        set(operation.params[i].slot, argument.value.toPlainText());
      else if (!bind(node, object, operation.params[i], argument))
        compiled.ok = false;
    }
    for (const auto& [slot, value] : operation.fixed) set(slot, value.toPlainText());
    if (node.negated) set(sceneWords::invertSlot, "true");
    compiled.out = object;
  }

  /// An argument that is not written out: a parameter is bound, anything else is an error.
  bool bind(const QuindlePlanNode& node, const std::string& object, const QuindleOpParam& target,
            const QuindleExpr& argument) {
    const std::string& condition = node.operation->name;
    if (argument.kind != QuindleExpr::Kind::Reference) {
      diag_.at(Diag::Severity::Error,
               refusal::argumentNotWorkedOut(target.name, condition, argument.toSource()), condition,
               node.line, 0);
      return false;
    }
    const QuindleParam* const param = params_.find(argument.name);
    if (!param) {
      diag_.at(Diag::Severity::Error, refusal::notAParameter(argument.name), condition, argument.line,
               argument.column);
      return false;
    }
    bindings_.push_back({object, target.slot, param->name, isQuindleObjectType(param->type)});
    return true;
  }

  /// The name to ask for; the number serves the whole select, so that no two are alike.
  std::string objectName(const std::string& base) { return prefix_ + base + std::to_string(++counter_); }

  const ParamIndex& params_;
  QuindleOps& ops_;
  const std::string prefix_; ///< A copy: the caller's text may be the one that receives the result.
  std::vector<QuindleBinding>& bindings_;
  Diag& diag_;
  std::int32_t counter_ = 0;
  std::vector<Frame> stack_;
};

} // namespace

bool compileIndexedSelect(const QuindlePlanNode& plan, const ParamIndex& params, QuindleOps& ops,
                          const std::string& source, const std::string& prefix, std::string& out,
                          std::vector<QuindleBinding>& bindings, Diag& diag) {
  Compiled compiled = SelectCompiler(params, ops, prefix, bindings, diag).compile(plan, source);
  out = std::move(compiled.out);
  return compiled.ok;
}

bool compileSelect(const QuindlePlanNode& plan, const QuindleDocument& document, QuindleOps& ops,
                   const std::string& source, const std::string& prefix, std::string& out,
                   std::vector<QuindleBinding>& bindings, Diag& diag) {
  return guarded(diag, false, [&] {
    return compileIndexedSelect(plan, ParamIndex(document), ops, source, prefix, out, bindings, diag);
  });
}

} // namespace Zamt
