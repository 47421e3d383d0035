#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

/// The one place where trees of records are walked. Records hold records of their own kind, as deep as the
/// input likes, so no pass may recurse: each of these keeps its own stack on the heap and costs linear time.
///
/// A record type takes part by a specialisation of `Shape`.
namespace Zamt::tree {

/// `Shape<Node>::eachList(node, f)` calls `f` with each vector of child records that `node` holds, const or
/// not as the node is; `Shape<Node>::copyFields(from, to)` copies everything else.
template <class Node>
struct Shape;

// A record's destructor calls this, and the lists destroyed here call that of their records, but of records
// whose own lists have been taken: it never goes deeper than that.
// NOLINTBEGIN(misc-no-recursion)

/// Destroys everything below `node` in bounded stack; for the destructor of a record.
template <class Node>
void destroyChildren(Node& node) noexcept {
  using List = std::vector<Node>;
  std::vector<List> pending;
  const auto takeLists = [&pending](Node& from) {
    Shape<Node>::eachList(from, [&pending](List& list) {
      if (!list.empty()) pending.push_back(std::move(list));
    });
  };
  // A list of leaves, by far the commonest case, is left to its own destructor: it goes no deeper.
  const auto takeListsBelow = [&](List& list) {
    for (Node& child : list) takeLists(child);
  };
  Shape<Node>::eachList(node, takeListsBelow);
  while (!pending.empty()) {
    List list = std::move(pending.back());
    pending.pop_back();
    takeListsBelow(list);
  }
}

// NOLINTEND(misc-no-recursion)

/// Whether any list of `node` holds a child.
template <class Node>
bool hasChildren(const Node& node) {
  bool found = false;
  Shape<Node>::eachList(node, [&found](const std::vector<Node>& list) { found = found || !list.empty(); });
  return found;
}

/// Copies everything below `from` to below `to`, whose child lists are empty; for copying a record.
template <class Node>
void copyChildren(const Node& from, Node& to) {
  std::vector<std::pair<const Node*, Node*>> pending{{&from, &to}};
  while (!pending.empty()) {
    const auto [source, target] = pending.back();
    pending.pop_back();
    std::vector<const std::vector<Node>*> sources;
    Shape<Node>::eachList(*source, [&](const std::vector<Node>& list) { sources.push_back(&list); });
    auto next = sources.begin();
    Shape<Node>::eachList(*target, [&](std::vector<Node>& list) {
      const std::vector<Node>& original = **next++;
      list.resize(original.size());
      for (std::size_t i = 0; i < original.size(); ++i) {
        Shape<Node>::copyFields(original[i], list[i]);
        if (hasChildren(original[i])) pending.emplace_back(&original[i], &list[i]);
      }
    });
  }
}

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
