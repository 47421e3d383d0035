#pragma once

#include <cstddef>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

/// The one place where trees of records are walked. Records hold records of their own kind, as deep as the
/// input likes, so no pass may recurse: each of these keeps its own stack on the heap and costs linear time.
///
/// A record lists its fields in `fieldsOf`; those that are vectors of its own type hold its children.
namespace Zamt::tree {

template <class Node, class Field>
inline constexpr bool isChildList = std::is_same_v<Field, std::vector<Node>>;

/// Calls `visit` with each field of `from` and the same field of `to`.
template <class From, class Node, class Visit>
void eachFieldPair(From& from, Node& to, const Visit& visit) {
  const auto sources = Node::fieldsOf(from);
  const auto targets = Node::fieldsOf(to);
  const auto visitAll = [&]<std::size_t... index>(std::index_sequence<index...>) {
    (visit(std::get<index>(sources), std::get<index>(targets)), ...);
  };
  visitAll(std::make_index_sequence<std::tuple_size_v<decltype(targets)>>());
}

/// Whether any list of `node` holds a child.
template <class Node>
bool hasChildren(const Node& node) {
  const auto isFilled = []<class Field>(const Field& field) {
    if constexpr (isChildList<Node, Field>) return !field.empty();
    return false;
  };
  return std::apply([&](const auto&... field) { return (isFilled(field) || ...); }, Node::fieldsOf(node));
}

/// Copies everything of a record but its children.
template <class Node>
void copyOwnFields(const Node& from, Node& to) {
  eachFieldPair(from, to, []<class Field>(const Field& original, Field& copied) {
    if constexpr (!isChildList<Node, Field>) copied = original;
  });
}

/// Makes `to`, a new record, a deep copy of `from`; for the copy constructor of a record.
template <class Node>
void copy(const Node& from, Node& to) {
  copyOwnFields(from, to);
  if (!hasChildren(from)) return;
  std::vector<std::pair<const Node*, Node*>> pending{{&from, &to}};
  while (!pending.empty()) {
    const auto [source, target] = pending.back();
    pending.pop_back();
    eachFieldPair(*source, *target, [&pending]<class Field>(const Field& originals, Field& copies) {
      if constexpr (isChildList<Node, Field>) {
        copies.resize(originals.size());
        for (std::size_t i = 0; i < originals.size(); ++i) {
          copyOwnFields(originals[i], copies[i]);
          if (hasChildren(originals[i])) pending.emplace_back(&originals[i], &copies[i]);
        }
      }
    });
  }
}

/// Moves `from` to `to`; for the move assignment of a record. The source may live below the target, so it is
/// taken out before anything of the target is let go.
template <class Node>
void move(Node& from, Node& to) noexcept {
  Node taken(std::move(from));
  eachFieldPair(taken, to, [](auto& source, auto& target) { target = std::move(source); });
}

/// The first list of children of a node that holds any; null if it is a leaf.
template <class Node>
std::vector<Node>* firstChildList(Node& node) {
  std::vector<Node>* found = nullptr;
  const auto look = [&found]<class Field>(Field& field) {
    if constexpr (isChildList<Node, Field>)
      if (!found && !field.empty()) found = &field;
  };
  std::apply([&](auto&... field) { (look(field), ...); }, Node::fieldsOf(node));
  return found;
}

// A record's destructor calls this, and this the destructors of leaves only: it never goes deeper than that.
// NOLINTBEGIN(misc-no-recursion)

/// Destroys everything below `node` in bounded stack and without memory of its own, for the destructor of a
/// record, which has to succeed when there is none. On the way down, the last node of a list that is left
/// keeps the list above that one, in the place of the list that is entered: the tree is its own stack.
template <class Node>
void destroyChildren(Node& node) noexcept {
  while (std::vector<Node>* const children = firstChildList(node)) {
    std::vector<Node> list = std::move(*children);
    std::vector<Node> above;
    std::size_t depth = 0;
    while (!list.empty() || depth > 0) {
      if (list.empty()) {
        list = std::move(above);
        // Lists in front of the one that was entered were empty already, so this is where it was kept.
        above = --depth > 0 ? std::move(*firstChildList(list.back())) : std::vector<Node>();
      } else if (std::vector<Node>* const below = firstChildList(list.back())) {
        std::vector<Node> entered = std::move(*below);
        *below = std::move(above);
        above = std::move(list);
        list = std::move(entered);
        ++depth;
      } else {
        list.pop_back();
      }
    }
  }
}

// NOLINTEND(misc-no-recursion)

/// Where a node stands in a walk.
template <class Node>
struct Place {
  const Node* parent = nullptr; ///< Null at the root.
  std::size_t index = 0;        ///< Among the children of `parent`.
  std::size_t depth = 0;        ///< 0 at the root.
};

/// For a walk that has nothing to do on the way back.
struct Nothing {
  template <class Node>
  void operator()(const Node& /*node*/) const {}
};

/// Calls `enter` for every node of the tree under `root` before the nodes below it, and `leave` behind them,
/// each with the node and, if it takes one, its `Place`. `childrenOf(node)` gives a node's children as a list
/// with `size()` and `[]`.
template <class Node, class ChildrenOf, class Enter, class Leave = Nothing>
void each(const Node& root, const ChildrenOf& childrenOf, const Enter& enter, const Leave& leave = {}) {
  struct Frame {
    const Node* node;
    std::size_t next; ///< Of the children, the one to be entered.
  };
  std::vector<Frame> stack{{&root, 0}};
  const auto callAtTop = [&stack](const auto& hook) {
    const Node& node = *stack.back().node;
    if constexpr (std::is_invocable_v<decltype(hook), const Node&>) {
      hook(node);
    } else if (stack.size() == 1) {
      hook(node, Place<Node>());
    } else {
      const Frame& around = stack[stack.size() - 2];
      hook(node, Place<Node>{around.node, around.next - 1, stack.size() - 1});
    }
  };
  callAtTop(enter);
  while (!stack.empty()) {
    Frame& top = stack.back();
    const auto& children = childrenOf(*top.node);
    if (top.next < children.size()) {
      stack.push_back({&children[top.next++], 0});
      callAtTop(enter);
    } else {
      callAtTop(leave);
      stack.pop_back();
    }
  }
}

/// What the tree under `root` comes to: `own(node)` is what a node comes to by itself, and `add(sum, child,
/// node)` adds to it what one of its children came to, in their order.
template <class Node, class ChildrenOf, class Own, class Add>
auto fold(const Node& root, const ChildrenOf& childrenOf, const Own& own, const Add& add) {
  std::vector<decltype(own(root))> sums; // of the nodes on the way down
  each(
      root, childrenOf, [&](const Node& node) { sums.push_back(own(node)); },
      [&](const Node& /*node*/, const Place<Node>& place) {
        if (!place.parent) return;
        auto sum = std::move(sums.back());
        sums.pop_back();
        add(sums.back(), std::move(sum), *place.parent);
      });
  return std::move(sums.front());
}

} // namespace Zamt::tree
