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

// A record's destructor calls this, and the lists destroyed here call that of their records, but of records
// whose own lists have been taken: it never goes deeper than that.
// NOLINTBEGIN(misc-no-recursion)

/// Destroys everything below `node` in bounded stack; for the destructor of a record.
template <class Node>
void destroyChildren(Node& node) noexcept {
  using List = std::vector<Node>;
  std::vector<List> pending;
  const auto eachList = [](Node& of, const auto& visit) {
    const auto visitField = [&visit]<class Field>(Field& field) {
      if constexpr (isChildList<Node, Field>) visit(field);
    };
    std::apply([&](auto&... field) { (visitField(field), ...); }, Node::fieldsOf(of));
  };
  // A list of leaves, by far the commonest case, is left to its own destructor: it goes no deeper.
  const auto takeListsBelow = [&](List& list) {
    for (Node& child : list)
      eachList(child, [&pending](List& below) {
        if (!below.empty()) pending.push_back(std::move(below));
      });
  };
  eachList(node, takeListsBelow);
  while (!pending.empty()) {
    List list = std::move(pending.back());
    pending.pop_back();
    takeListsBelow(list);
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

/// Walks the tree under `root`. `childrenOf(node)` gives a node's children as a vector. `visit(node, parent,
/// index)` is called for a node with n children n + 1 times: with each index 0 .. n - 1 before that child is
/// walked, and with n after the last, so that text can go before, between and behind. `parent` is null at the
/// root.
template <class Node, class ChildrenOf, class Visit>
void walk(const Node& root, const ChildrenOf& childrenOf, const Visit& visit) {
  struct Frame {
    const Node* node;
    const Node* parent;
    std::size_t next;
  };
  std::vector<Frame> stack{{&root, nullptr, 0}};
  while (!stack.empty()) {
    Frame& top = stack.back();
    const auto& children = childrenOf(*top.node);
    const std::size_t index = top.next++;
    const Node* const node = top.node;
    visit(*node, top.parent, index);
    if (index < children.size())
      stack.push_back({&children[index], node, 0});
    else
      stack.pop_back();
  }
}

} // namespace Zamt::tree
